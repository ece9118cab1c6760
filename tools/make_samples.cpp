// SPDX-License-Identifier: MIT
// make-samples DIR: writes a valid file of every supported format into DIR and prints the paths, one per line.

#include "tools/samples/sample_files.h"

#include <QCoreApplication>
#include <QDir>
#include <QSaveFile>

#include <cstdio>

namespace
{

constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

void print(std::FILE* stream, const QString& text)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2 || arguments.at(1).startsWith(QLatin1Char('-'))) {
        print(stderr, QStringLiteral("usage: make-samples DIR\n"));
        return kExitUsage;
    }
    const QDir folder(arguments.at(1));
    if (!folder.mkpath(QStringLiteral("."))) {
        print(stderr, QStringLiteral("make-samples: cannot make the folder %1\n").arg(folder.path()));
        return kExitFailed;
    }
    for (const auto& sample : zr::samples::sampleFiles()) {
        const QString path = folder.absoluteFilePath(QString::fromLatin1(sample.name));
        if (!writeFile(path, sample.make())) {
            print(stderr, QStringLiteral("make-samples: cannot write %1\n").arg(path));
            return kExitFailed;
        }
        print(stdout, path + QLatin1Char('\n'));
    }
    return 0;
}
