// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/descriptor.h"

#include <QByteArray>

namespace zr::desktop
{

class SourceFile;

/// The file that a thumbnail is written to, or stdout. It is written in place, since file managers keep it open, and
/// nothing in it changes before the picture is there.
class TargetFile
{
public:
    /// Opens or creates the file. Returns why that is not possible; empty when it is open. What is neither empty nor a
    /// PNG is refused, `source` above all: it is not what the user meant.
    QByteArray open(const QByteArray& output, const SourceFile& source);

    /// Replaces the content. Returns why that is not possible, after which the file is empty.
    QByteArray write(const QByteArray& bytes);

    /// Whether open() failed for something that the command line should not have named.
    bool isMistaken() const { return m_isMistaken; }

private:
    QByteArray refuse(const QByteArray& reason);
    QByteArray openStdout(const SourceFile& source);

    Descriptor m_file;
    int m_descriptor = -1;
    bool m_isRegular = false;
    bool m_isMistaken = false;
};

} // namespace zr::desktop
