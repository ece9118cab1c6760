// SPDX-License-Identifier: MIT
#include "host/options.h"

#include "host/thumbnail_client.h"
#include "readers/reader_table.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <optional>

namespace zr
{
namespace
{

// Ten times the size of the pictures; a larger output would show nothing more.
constexpr int kMaxSizePx = 4096;

constexpr int kMaxJobs = 256;

// A worker that has read nothing yet takes some 60.
constexpr int kMinWorkerMegabytes = 100;

// Below the list of options.
const char* const kMoreHelp = R"(
Formats: %1

Examples:
  zrthumb part.stl                       print where its cached PNG is
  zrthumb -o part.png -s 256 part.stl    write the picture to a file
  zrthumb -o - part.stl | magick - part.jpg
  zrthumb -r --sheet all.png Models      one picture of a whole folder
  zrthumb -r -j 0 --output-dir Pictures -s 256 Models
                                         one PNG of each file, with all cores

For each file, the path of its PNG goes to stdout, or one line to stderr:
"zrthumb: FILE: no thumbnail: REASON". With --json, both are lines on stdout.

Exit status:
  0    all files have a thumbnail, all outputs are written
  1    a file has none, a folder could not be listed or an output not written;
       something could not be removed
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
        parser.addOptions(
            {output, size, outputFolder, refresh, sheet, recursive, filesFrom, zero, json, quiet, jobs, workerMemory});
        if (talksToServer())
            parser.addOption(server);
        else
            parser.addOptions({renderer, obj, noCache});
        parser.addOptions({prune, clear, check, help, version});
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
    const QCommandLineOption size{
        {"s", "size"}, "With -o or --output-dir, fit the picture into <N> x <N> pixels.", "N"};
    const QCommandLineOption outputFolder{"output-dir",
                                          "Save the picture of each file below <DIR>, with the folders that it has "
                                          "below its FILE. A PNG that is newer than its file is left as it is.",
                                          "DIR"};
    const QCommandLineOption refresh{"refresh", "With --output-dir, write all pictures anew."};
    const QCommandLineOption sheet{"sheet", "Save a contact sheet of all pictures, with their names, as <PNG>.", "PNG"};
    const QCommandLineOption recursive{{"r", "recursive"},
                                       "A FILE that is a folder stands for all files below it but hidden ones."};
    const QCommandLineOption filesFrom{"files-from",
                                       "Read the names of the files from <LIST>, one a line; - is stdin. With "
                                       "--output-dir, files keep the folders in their names.",
                                       "LIST"};
    const QCommandLineOption zero{{"0", "null"}, "Names end with a zero byte: in LIST, and those printed."};
    const QCommandLineOption json{"json", "Print the result for each file as a line of JSON."};
    const QCommandLineOption quiet{{"q", "quiet"}, "Print nothing but failures."};
    const QCommandLineOption jobs{
        {"j", "jobs"},
        "Read files in <N> processes at a time; 0 is one for each core. A file that makes one "
        "crash fails alone. More than 100 files, or several large ones, are read in 1 process at least.",
        "N"};
    const QCommandLineOption workerMemory{
        "worker-memory", "With -j, replace a process before it takes more than <MB> megabytes (the default is 400).",
        "MB", "400"};
    const QCommandLineOption renderer{"renderer",
                                      "Draw models with <WHICH>: opengl, software, which needs no display, or auto "
                                      "(the default), which is opengl where there is a display.",
                                      "WHICH", kAutoRenderer};
    const QCommandLineOption obj{"obj",
                                 "How to read OBJ files: <WHICH> is server (the default), or standard, as all other "
                                 "programs do, which goes with -o, --output-dir or --sheet and leaves the "
                                 "cache alone.",
                                 "WHICH", kServerReading};
    const QCommandLineOption noCache{"no-cache",
                                     "With -o, --output-dir or --sheet, leave the cache and the log alone."};
    const QCommandLineOption server{"dll", "Use the server in the DLL <PATH> without registration.", "PATH"};
    const QCommandLineOption prune{"prune", "Remove from the cache what belongs to files that are gone."};
    const QCommandLineOption clear{"clear", "Remove all pictures from the cache."};
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

Options standAlone(const CommandLine& line, const QCommandLineOption& option, Options::Action action)
{
    if (line.parser.optionNames().size() > 1 || !line.parser.positionalArguments().isEmpty())
        return reject(QStringLiteral("--%1 stands alone").arg(option.names().first()));
    Options options;
    options.action = action;
    return options;
}

bool isBetween(const CommandLine& line, const QCommandLineOption& option, int min, int max)
{
    bool isNumber = false;
    const int number = line.parser.value(option).toInt(&isNumber);
    return !line.parser.isSet(option) || (isNumber && number >= min && number <= max);
}

// An empty name.
bool lacksName(const CommandLine& line, const QCommandLineOption& option)
{
    return line.parser.isSet(option) && line.parser.value(option).isEmpty();
}

/// Something wrong with the command line.
struct UsageError {
    bool isSo;
    QString text;
};

QString firstOf(std::initializer_list<UsageError> errors)
{
    const auto* const error = std::find_if(errors.begin(), errors.end(), [](const auto& each) { return each.isSo; });
    return error == errors.end() ? QString() : error->text;
}

// What is wrong with what options take.
QString valueError(const CommandLine& line)
{
    return firstOf({
        {lacksName(line, line.output), QStringLiteral("--output needs a file name")},
        {lacksName(line, line.sheet), QStringLiteral("--sheet needs a file name")},
        {lacksName(line, line.outputFolder), QStringLiteral("--output-dir needs the name of a folder")},
        {lacksName(line, line.filesFrom), QStringLiteral("--files-from needs a file name")},
        {!isBetween(line, line.size, 1, kMaxSizePx),
         QStringLiteral("--size needs a number from 1 to %1").arg(kMaxSizePx)},
        {!isBetween(line, line.jobs, 0, kMaxJobs), QStringLiteral("--jobs needs a number from 0 to %1").arg(kMaxJobs)},
        {!isBetween(line, line.workerMemory, kMinWorkerMegabytes, std::numeric_limits<int>::max()),
         QStringLiteral("--worker-memory needs a number of megabytes, at least %1").arg(kMinWorkerMegabytes)},
        {!talksToServer() && !rendererOf(line.parser.value(line.renderer)),
         QStringLiteral("--renderer needs auto, opengl or software")},
        {!talksToServer() && !objReadingOf(line.parser.value(line.obj)),
         QStringLiteral("--obj needs server or standard")},
    });
}

// What is wrong with the options together; empty when nothing is.
QString usageError(const CommandLine& line, const Options& options)
{
    const auto isSet = [&line](const QCommandLineOption& option) { return line.parser.isSet(option); };
    const bool isOfOneFile = options.files.size() == 1 && !options.recursive;
    const QString error = firstOf({
        {options.files.isEmpty() && !isSet(line.filesFrom), QStringLiteral("no FILE given")},
        {!options.files.isEmpty() && isSet(line.filesFrom),
         QStringLiteral("--files-from and FILE exclude each other; put all names into the list")},
        {isSet(line.output) && isSet(line.outputFolder),
         QStringLiteral("--output and --output-dir exclude each other")},
        {isSet(line.output) && !isOfOneFile, QStringLiteral("--output needs a single FILE")},
        {isSet(line.output) && isSet(line.jobs), QStringLiteral("--jobs is for many files; leave out --output")},
        {isSet(line.size) && !isSet(line.output) && !isSet(line.outputFolder),
         QStringLiteral("--size needs --output or --output-dir")},
        {isSet(line.refresh) && !isSet(line.outputFolder), QStringLiteral("--refresh needs --output-dir")},
        {options.json && options.writesPictureToStdout(),
         QStringLiteral("--json needs stdout for itself; save the picture as a file")},
    });
    if (!error.isEmpty() || options.dataFolderUse == DataFolderUse::Usual || options.hasOutputs())
        return error.isEmpty() ? valueError(line) : error;
    if (options.objReading == ObjReading::Standard)
        return QStringLiteral(
            "--obj standard needs --output, --output-dir or --sheet: the cache holds the server's pictures only");
    return QStringLiteral(
        "--no-cache needs --output, --output-dir or --sheet: there is no other place for the picture");
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
        return standAlone(line, line.check, Options::Action::RunChecks);
    if (line.parser.isSet(line.prune))
        return standAlone(line, line.prune, Options::Action::PruneCache);
    if (line.parser.isSet(line.clear))
        return standAlone(line, line.clear, Options::Action::ClearCache);

    Options options;
    options.environment = QProcessEnvironment::systemEnvironment();
    options.files = line.parser.positionalArguments();
    options.output = line.parser.value(line.output);
    options.sizePx = line.parser.value(line.size).toInt();
    options.outputFolder = QDir::fromNativeSeparators(line.parser.value(line.outputFolder));
    options.refreshes = line.parser.isSet(line.refresh);
    options.sheet = line.parser.value(line.sheet);
    options.filesFrom = line.parser.value(line.filesFrom);
    options.endsWithZero = line.parser.isSet(line.zero);
    options.json = line.parser.isSet(line.json);
    if (line.parser.isSet(line.jobs))
        options.jobs = line.parser.value(line.jobs).toInt();
    options.workerMegabytes = line.parser.value(line.workerMemory).toInt();
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
