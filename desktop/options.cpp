// SPDX-License-Identifier: MIT
#include "desktop/options.h"

#include "desktop/messages.h"
#include "render/software_renderer.h"

#include <charconv>
#include <cstring>
#include <limits>
#include <optional>

#include <getopt.h>

namespace zr::desktop
{
namespace
{

constexpr char kHelp[] = R"(Usage: zrthumbnailer [OPTION]... INPUT OUTPUT
Makes the thumbnail of one 3D-printing file, for file managers.

INPUT is a path or a file: URI. OUTPUT is the PNG to write; - is stdout.

  -s, --size SIZE           longest side in pixels, 16 to 4096 (default: 256)
      --time-limit SECONDS  processor time, 0 for any (default: 20)
      --memory-limit MIB    address space, 0 for any (default: 2048)
      --verbose             tell what this system lacks to confine the program
  -h, --help                show this help
  -v, --version             show the version

Models are drawn at SIZE, previews are never enlarged. Nothing but INPUT is
read and nothing but OUTPUT is written.

Exit status:
  0  OUTPUT has the picture
  1  there is none; one line on stderr says why
  2  wrong usage; nothing was done
)";

constexpr char kVersion[] = "zrthumbnailer " ZRTHUMB_VERSION "\n";

enum Code { Size = 's', Help = 'h', Version = 'v', TimeLimit = 256, MemoryLimit, Verbose };

const option kOptions[] = {
    {"size", required_argument, nullptr, Size},
    {"time-limit", required_argument, nullptr, TimeLimit},
    {"memory-limit", required_argument, nullptr, MemoryLimit},
    {"verbose", no_argument, nullptr, Verbose},
    {"help", no_argument, nullptr, Help},
    {"version", no_argument, nullptr, Version},
    {nullptr, 0, nullptr, 0},
};

Options show(const char* text)
{
    Options options;
    options.action = Options::Action::ShowText;
    options.text = text;
    return options;
}

Options reject(const QByteArray& reason)
{
    Options options;
    options.action = Options::Action::RejectUsage;
    options.text = "zrthumbnailer: " + shown(reason) + "\nTry 'zrthumbnailer --help'.\n";
    return options;
}

// What getopt_long() does not understand.
Options rejectOption(int code, const char* argument)
{
    for (const option* row = kOptions; row->name; ++row) {
        if (row->val == optopt)
            return reject(QByteArray("--") + row->name + (code == ':' ? " needs a value" : " takes no value"));
    }
    return reject("there is no option " + (optopt == 0 ? QByteArray(argument) : QByteArray(1, '-') + char(optopt)));
}

std::optional<int> numberWithin(const char* text, int min, int max)
{
    int number = 0;
    const char* const end = text + std::strlen(text);
    const auto [read, error] = std::from_chars(text, end, number);
    if (error != std::errc() || read != end || number < min || number > max)
        return std::nullopt;
    return number;
}

// Sets the option's number. Returns what is wrong with it; empty when nothing is.
QByteArray setNumber(int& value, const char* name, const char* text, int min, int max)
{
    const auto number = numberWithin(text, min, max);
    if (!number)
        return QByteArray(name) + " needs a whole number from " + QByteArray::number(min) + " to " +
               QByteArray::number(max);
    value = *number;
    return {};
}

// Of an option with a number.
QByteArray setOption(Options& options, int code, const char* text)
{
    constexpr int kMaxSeconds = 86400;
    constexpr int kMaxMebibytes = std::numeric_limits<int>::max();
    switch (code) {
    case Size:
        return setNumber(options.sizePx, "--size", text, SoftwareSettings::kMinSidePx, SoftwareSettings::kMaxSidePx);
    case TimeLimit:
        return setNumber(options.limits.seconds, "--time-limit", text, 0, kMaxSeconds);
    default:
        return setNumber(options.limits.mebibytes, "--memory-limit", text, 0, kMaxMebibytes);
    }
}

Options withOperands(Options options, int count, char** operands)
{
    if (count < 2)
        return reject(count == 0 ? "no INPUT given" : "no OUTPUT given");
    if (count > 2)
        return reject("one INPUT and one OUTPUT, please: a process makes one thumbnail");
    options.input = operands[0];
    options.output = operands[1];
    if (options.input.isEmpty() || options.output.isEmpty())
        return reject("a file needs a name");
    return options;
}

} // namespace

Options parseOptions(int argc, char** argv)
{
    Options options;
    optind = 0; // the GNU way to start anew
    for (;;) {
        const int code = getopt_long(argc, argv, ":s:hv", kOptions, nullptr);
        QByteArray fault;
        switch (code) {
        case -1:
            return withOperands(options, argc - optind, argv + optind);
        case Help:
            return show(kHelp);
        case Version:
            return show(kVersion);
        case Verbose:
            options.isVerbose = true;
            break;
        case ':':
        case '?':
            return rejectOption(code, argv[optind - 1]);
        default:
            fault = setOption(options, code, optarg);
        }
        if (!fault.isEmpty())
            return reject(fault);
    }
}

} // namespace zr::desktop
