// SPDX-License-Identifier: MIT
// database_holder DATABASE MILLISECONDS STATEMENT...: another program that works with the cache database. It runs the
// statements, the first of which begins a transaction, prints "ready", and commits when the time is over or its
// standard input ends.

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>

#include <cstdio>

#include <poll.h>
#include <unistd.h>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"));
    database.setDatabaseName(arguments.at(1));
    if (!database.open())
        return 1;
    QSqlQuery query;
    for (const QString& statement : arguments.mid(3)) {
        if (!query.exec(statement)) {
            std::fprintf(stderr, "%s\n", query.lastError().text().toLocal8Bit().constData());
            return 1;
        }
    }
    query.next(); // only reading the first row takes the lock
    std::puts("ready");
    std::fflush(stdout);
    pollfd input{STDIN_FILENO, POLLIN, 0};
    poll(&input, 1, arguments.at(2).toInt());
    query.finish();
    return query.exec(QStringLiteral("commit")) ? 0 : 1;
}
