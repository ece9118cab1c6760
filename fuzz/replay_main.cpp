// SPDX-License-Identifier: MIT
// Runs a fuzz target over the files of the folders that are named on the command line and over all sample files, so
// that inputs that once found something are tried again without a fuzzing engine. A finding ends the process.

#include "tools/samples/sample_files.h"

#include <QDir>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace
{

void run(const QByteArray& input)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.constData()),
                           static_cast<std::size_t>(input.size()));
}

// Runs all files of the folder and returns their number.
int replayFolder(const QDir& folder)
{
    const QStringList names = folder.entryList(QDir::Files, QDir::Name);
    for (const QString& name : names) {
        QFile file(folder.filePath(name));
        if (!file.open(QIODevice::ReadOnly))
            return 0;
        run(file.readAll());
    }
    return names.size();
}

} // namespace

int main(int argc, char** argv)
{
    run(QByteArray());
    for (int i = 1; i < argc; ++i) {
        const int files = replayFolder(QDir(QString::fromLocal8Bit(argv[i])));
        std::printf("%s: %d inputs\n", argv[i], files);
        if (files == 0)
            return 1;
    }
    for (const auto& sample : zr::samples::sampleFiles())
        run(sample.make());
    std::printf("%d sample files\n", static_cast<int>(zr::samples::sampleFiles().size()));
    return 0;
}
