// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>

namespace zr
{

/// The checks' own connection to the cache database, which exists. Like a request, it waits 5 seconds for a database
/// that is in use.
class CheckConnection
{
public:
    CheckConnection();
    ~CheckConnection();
    Q_DISABLE_COPY(CheckConnection)

    /// The first column of the statement's result, with `value` for its placeholder "?" if it has one.
    QStringList texts(const QString& statement, const QVariant& value = {});

    /// Runs the statement. False, with the error(), when that fails.
    bool run(const QString& statement, const QVariant& value = {});

    /// The error of the last statement; empty when it succeeded.
    const QString& error() const { return m_error; }
    /// Whether the reason was that another program uses the database.
    bool isBusy() const { return m_isBusy; }

private:
    QString m_error;
    bool m_isBusy = false;
};

} // namespace zr
