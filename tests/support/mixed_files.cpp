// SPDX-License-Identifier: MIT
#include "tests/support/mixed_files.h"

#include "tests/support/files.h"
#include "tools/samples/sample_files.h"

#include <QDir>
#include <QFileInfo>

#include <random>

namespace zr::test
{
namespace
{

QByteArray damaged(QByteArray bytes, std::mt19937& random)
{
    const auto below = [&random](int end) { return static_cast<int>(random() % static_cast<unsigned>(end)); };
    switch (random() % 3) {
    case 0:
        return bytes.left(below(bytes.size()));
    case 1:
        for (int i = 0; i < 8; ++i)
            bytes[below(qMin(bytes.size(), 512))] = static_cast<char>(random());
        return bytes;
    default:
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        return bytes;
    }
}

} // namespace

QStringList makeMixedFiles(const QString& folder, int count)
{
    std::vector<QByteArray> contents;
    for (const samples::SampleFile& sample : samples::sampleFiles())
        contents.push_back(sample.make());
    std::mt19937 random(1); // NOLINT(cert-msc51-cpp): the same files each time
    QStringList names;
    for (int i = 0; i < count; ++i) {
        const auto kind = static_cast<std::size_t>(i) % contents.size();
        const QString sample = QString::fromLatin1(samples::sampleFiles()[kind].name);
        const QString name = QStringLiteral("%1/%2")
                                 .arg(i / 20, 3, 10, QLatin1Char('0'))
                                 .arg(i % 7 == 0 ? sample : QStringLiteral("%1-%2").arg(i).arg(sample));
        QDir(folder).mkpath(QFileInfo(name).path());
        writeFile(QDir(folder).filePath(name), i % 10 == 9 ? damaged(contents[kind], random) : contents[kind]);
        names += name;
    }
    names.sort();
    return names;
}

} // namespace zr::test
