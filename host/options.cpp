// SPDX-License-Identifier: MIT
#include "host/options.h"

#include "host/thumbnail_client.h"
#include "readers/reader_table.h"

#include <QCommandLineParser>
#include <QCoreApplication>

#include <optional>

namespace zr
{
namespace
{

// Ten times the size of the pictures; a larger output would show nothing more.
constexpr int kMaxSizePx = 4096;

// Below the list of options.
const char* const kMoreHelp = R"(
Formats: %1

Examples:
  zrthumb part.stl                       print where its cached PNG is
  zrthumb -o part.png -s 256 part.stl    write the picture to a file
  zrthumb -o - part.stl | magick - part.jpg
  zrthumb -r --sheet all.png Models      one picture of a whole folder

For each file, the path of its PNG goes to stdout, or one line to stderr:
"zrthumb: FILE: no thumbnail: REASON".

Exit status:
  0    all files have a thumbnail, all outputs are written
  1    a file has none, a folder could not be listed or an output not written
  2    wrong usage; nothing was done
  130  interrupted (128 + the signal's number)
)";

constexpr char kAutoRenderer[] = "auto";

constexpr struct {
    const char* name;
    Options::Renderer renderer;
} kRenderers[] = {
    {kAutoRenderer, Options::Renderer::Auto},
    {"opengl", Options::Renderer::OpenGl},
    {"software", Options::Renderer::Software},
};

std::optional<Options::Renderer> rendererOf(const QString& name)
{
    for (const auto& row : kRenderers) {
        if (name == QLatin1String(row.name))
            return row.renderer;
    }
    return std::nullopt;
}

constexpr char kServerReading[] = "server";

std::optional<ObjReading> objReadingOf(const QString& name)
{
    if (name == QLatin1String(kServerReading))
        return ObjReading::Server;
    if (name == QLatin1String("standard"))
        return ObjReading::Standard;
    return std::nullopt;
}

struct CommandLine {
    CommandLine()
    {
        parser.setApplicationDescription(
            QStringLiteral("Makes thumbnails of 3D-printing files and prints the path of each cached PNG."));
        parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("Files to make thumbnails of."),
                                     QStringLiteral("FILE..."));
        parser.addOptions({output, size, sheet, recursive, quiet});
        if (talksToServer())
            parser.addOption(server);
        else
            parser.addOptions({renderer, obj, noCache});
        parser.addOptions({check, help, version});
    }

    // The parser takes the program's name from the application object, which does not exist at this point.
    QString helpText() const
    {
        int argc = 1;
        char name[] = "zrthumb";
        char* argv[] = {name, nullptr};
        const QCoreApplication application(argc, argv);
        return parser.helpText() + QString(QLatin1String(kMoreHelp)).arg(supportedSuffixes().join(QLatin1String(", ")));
    }

    QCommandLineParser parser;
    const QCommandLineOption output{
        {"o", "output"}, "With a single FILE, save its picture as <PNG>; - is stdout.", "PNG"};
    const QCommandLineOption size{{"s", "size"}, "With -o, fit the picture into <N> x <N> pixels.", "N"};
    const QCommandLineOption sheet{"sheet", "Save a contact sheet of all pictures, with their names, as <PNG>.", "PNG"};
    const QCommandLineOption recursive{{"r", "recursive"},
                                       "A FILE that is a folder stands for all files below it but hidden ones."};
    const QCommandLineOption quiet{{"q", "quiet"}, "Print nothing but failures."};
    const QCommandLineOption renderer{"renderer",
                                      "Draw models with <WHICH>: opengl, software, which needs no display, or auto "
                                      "(the default), which is opengl where there is a display.",
                                      "WHICH", kAutoRenderer};
    const QCommandLineOption obj{"obj",
                                 "How to read OBJ files: <WHICH> is server (the default), or standard, as all other "
                                 "programs do, which goes with -o or --sheet and leaves the cache alone.",
                                 "WHICH", kServerReading};
    const QCommandLineOption noCache{"no-cache", "With -o or --sheet, leave the cache and the log alone."};
    const QCommandLineOption server{"dll", "Use the server in the DLL <PATH> without registration.", "PATH"};
    const QCommandLineOption check{"check", "Tell why no thumbnails show: check the installation and this machine."};
    const QCommandLineOption help{{"h", "help"}, "Show this help."};
    const QCommandLineOption version{{"v", "version"}, "Show the version."};
};

Options show(const QString& text)
{
    Options options;
    options.action = Options::Action::ShowText;
    options.text = text;
    return options;
}

Options reject(const QString& reason)
{
    Options options;
    options.action = Options::Action::RejectUsage;
    options.text = QStringLiteral("zrthumb: %1\nTry 'zrthumb --help'.\n").arg(reason);
    return options;
}

Options check(const CommandLine& line)
{
    if (line.parser.optionNames().size() > 1 || !line.parser.positionalArguments().isEmpty())
        return reject(QStringLiteral("--check stands alone"));
    Options options;
    options.action = Options::Action::RunChecks;
    return options;
}

// What is wrong with the options together; empty when nothing is.
QString usageError(const CommandLine& line, const Options& options)
{
    if (options.files.isEmpty())
        return QStringLiteral("no FILE given");
    if (line.parser.isSet(line.output) && (options.files.size() != 1 || options.recursive))
        return QStringLiteral("--output needs a single FILE");
    if (line.parser.isSet(line.output) && options.output.isEmpty())
        return QStringLiteral("--output needs a file name");
    if (line.parser.isSet(line.sheet) && options.sheet.isEmpty())
        return QStringLiteral("--sheet needs a file name");
    if (line.parser.isSet(line.size) && !line.parser.isSet(line.output))
        return QStringLiteral("--size needs --output");
    if (line.parser.isSet(line.size) && (options.sizePx < 1 || options.sizePx > kMaxSizePx))
        return QStringLiteral("--size needs a number from 1 to %1").arg(kMaxSizePx);
    if (!talksToServer() && !rendererOf(line.parser.value(line.renderer)))
        return QStringLiteral("--renderer needs auto, opengl or software");
    if (!talksToServer() && !objReadingOf(line.parser.value(line.obj)))
        return QStringLiteral("--obj needs server or standard");
    if (options.dataFolderUse == DataFolderUse::Usual || !options.output.isEmpty() || !options.sheet.isEmpty())
        return {};
    if (options.objReading == ObjReading::Standard)
        return QStringLiteral("--obj standard needs --output or --sheet: the cache holds the server's pictures only");
    return QStringLiteral("--no-cache needs --output or --sheet: there is no other place for the picture");
}

} // namespace

Options parseOptions(const QStringList& arguments)
{
    CommandLine line;
    if (!line.parser.parse(arguments))
        return reject(line.parser.errorText());
    if (line.parser.isSet(line.help))
        return show(line.helpText());
    if (line.parser.isSet(line.version))
        return show(QStringLiteral("zrthumb " ZRTHUMB_VERSION "\n"));
    if (line.parser.isSet(line.check))
        return check(line);

    Options options;
    options.files = line.parser.positionalArguments();
    options.output = line.parser.value(line.output);
    options.sizePx = line.parser.value(line.size).toInt();
    options.sheet = line.parser.value(line.sheet);
    options.recursive = line.parser.isSet(line.recursive);
    options.quiet = line.parser.isSet(line.quiet);
    if (talksToServer()) {
        options.server = line.parser.value(line.server);
    } else {
        options.renderer = rendererOf(line.parser.value(line.renderer)).value_or(Options::Renderer::Auto);
        options.objReading = objReadingOf(line.parser.value(line.obj)).value_or(ObjReading::Server);
        // The pictures in the cache are the server's.
        const bool usesCache = !line.parser.isSet(line.noCache) && options.objReading == ObjReading::Server;
        options.dataFolderUse = usesCache ? DataFolderUse::Usual : DataFolderUse::None;
    }
    const QString error = usageError(line, options);
    return error.isEmpty() ? options : reject(error);
}

} // namespace zr
