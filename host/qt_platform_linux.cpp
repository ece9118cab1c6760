// SPDX-License-Identifier: MIT
#include "host/qt_platform.h"

#include "core/printable.h"
#include "host/console.h"
#include "host/platform.h"

#include <QGuiApplication>
#include <QHash>

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zr
{
namespace
{

constexpr const char* kPlatform = "QT_QPA_PLATFORM";

// What decides which platform plug-in Qt loads. Where a plug-in of another Qt is found first, it may end the process.
constexpr const char* kSettings[] = {kPlatform, "QT_QPA_PLATFORM_PLUGIN_PATH", "QT_PLUGIN_PATH"};

// Plug-ins that give up quietly where they cannot work, so that Qt tries the next one of a list.
constexpr const char* kQuietPlatforms[] = {"xcb", "wayland", "offscreen", "minimal"};

constexpr unsigned kMostSecondsToStart = 10;

using Settings = QHash<QByteArray, QByteArray>;

struct PlatformChoice {
    Settings asked; ///< by the user
    bool isWithoutThem = false;
    QtMessageHandler previousHandler = nullptr;
};

// Never destroyed: a message may come while the process ends.
PlatformChoice& platformChoice()
{
    static auto* const choice = new PlatformChoice;
    return *choice;
}

// Qt would abort the process when this returns from a fatal message.
void endWithFatalMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type != QtFatalMsg) {
        if (const QtMessageHandler previous = platformChoice().previousHandler)
            previous(type, context, message);
        return;
    }
    printLine(stderr, QStringLiteral("zrthumb: ") + printable(qtFailure(message)));
    leave(EXIT_FAILURE);
}

Settings readSettings()
{
    Settings settings;
    for (const char* const name : kSettings) {
        if (!qEnvironmentVariableIsEmpty(name))
            settings.insert(name, qgetenv(name));
    }
    return settings;
}

// The platforms of a list as Qt names them, without their arguments.
QByteArrayList namesOf(const QByteArray& platforms)
{
    QByteArrayList names;
    for (const QByteArray& platform : platforms.split(';'))
        names += platform.split(':').first().toLower();
    return names;
}

// Each list ends with platforms that need no display.
QByteArrayList usualPlatforms()
{
    QByteArrayList platforms;
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        platforms += "xcb";
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        platforms += "wayland";
    return platforms + QByteArrayList{"offscreen", "minimal"};
}

bool isQuiet(const QByteArray& platform)
{
    return std::find(std::begin(kQuietPlatforms), std::end(kQuietPlatforms), platform) != std::end(kQuietPlatforms);
}

bool mayAbort(const Settings& settings)
{
    if (settings.isEmpty())
        return false;
    const QByteArrayList names = namesOf(settings.value(kPlatform));
    return settings.size() > 1 || !std::all_of(names.cbegin(), names.cend(), isQuiet);
}

// Silently, and without leaving a core file.
[[noreturn]] void startQtAndLeave()
{
    alarm(kMostSecondsToStart);
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
        dup2(nowhere, stream);
    int argc = 1;
    char name[] = "zrthumb";
    char* argv[] = {name, nullptr};
    const QGuiApplication application(argc, argv);
    // Without a screen there is no surface to draw on, which is a fatal error for Qt.
    std::_Exit(QGuiApplication::primaryScreen() ? EXIT_SUCCESS : EXIT_FAILURE);
}

// Whether Qt starts with the current environment, tried in a child process, which may crash.
bool startsInChild()
{
    const pid_t child = fork();
    if (child == 0)
        startQtAndLeave();
    int status = 0;
    while (child != -1 && waitpid(child, &status, 0) == -1 && errno == EINTR) {
    }
    return child != -1 && WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

} // namespace

void chooseQtPlatform()
{
    PlatformChoice& choice = platformChoice();
    choice.previousHandler = qInstallMessageHandler(endWithFatalMessage);
    // Pictures need no theme, and some themes end the process where they find no display.
    qunsetenv("QT_QPA_PLATFORMTHEME");
    choice.asked = readSettings();
    const QByteArrayList usual = usualPlatforms();
    const QByteArray own = choice.asked.value(kPlatform);
    qputenv(kPlatform, (own.isEmpty() ? usual : QByteArrayList{own} + usual).join(';'));
    if (!mayAbort(choice.asked) || startsInChild())
        return;
    choice.isWithoutThem = true;
    for (const char* const name : kSettings)
        qunsetenv(name);
    qputenv(kPlatform, usual.join(';'));
}

QStringList unusedPlatformSettings()
{
    const PlatformChoice& choice = platformChoice();
    QStringList settings;
    for (const QByteArray name : kSettings) {
        const bool isUnused = choice.isWithoutThem || (name == kPlatform && !isPlatformOfUser());
        if (isUnused && choice.asked.contains(name))
            settings += QString::fromLocal8Bit(name + '=' + choice.asked.value(name));
    }
    return settings;
}

bool isPlatformOfUser()
{
    const PlatformChoice& choice = platformChoice();
    return !choice.isWithoutThem &&
           namesOf(choice.asked.value(kPlatform)).contains(QGuiApplication::platformName().toLatin1());
}

QString qtFailure(const QString& message)
{
    if (message.contains(QLatin1String("platform plugin")))
        return QStringLiteral("Qt does not start, since none of its platform plug-ins works: unset the variables that "
                              "begin with QT_, or install the package libqt5gui5 again");
    return QStringLiteral("Qt cannot go on: ") + message.simplified();
}

bool openGlLacksDisplay()
{
    return QStringList{QStringLiteral("offscreen"), QStringLiteral("minimal")}.contains(
        QGuiApplication::platformName());
}

} // namespace zr
