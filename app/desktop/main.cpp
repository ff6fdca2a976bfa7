#include "app/desktop/desktop_application.h"
#include "app/desktop/memory_arenas.h"

#include <QApplication>
#include <QMessageBox>

#include <cstdio>

int main(int argc, char* argv[])
{
    app::desktop::limitMemoryArenas();
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Skyvane"));
    QApplication::setOrganizationName(QStringLiteral("Skyvane"));
    QApplication::setOrganizationDomain(QStringLiteral("skyvane.org"));
    QApplication::setApplicationVersion(QStringLiteral(SKYVANE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("org.skyvane.Skyvane"));

    using Action = app::desktop::DesktopArguments::Action;
    const app::desktop::DesktopArguments arguments =
        app::desktop::parseDesktopArguments(QApplication::arguments().mid(1));
    switch (arguments.action) {
    case Action::ShowHelp:
    case Action::ShowVersion:
        std::fputs(arguments.message.toUtf8().constData(), stdout);
        return 0;
    case Action::Fail:
        std::fprintf(stderr, "skyvane: %s\n\n%s", arguments.message.toUtf8().constData(),
                     app::desktop::desktopHelpText().toUtf8().constData());
        return 2;
    case Action::Run:
        break;
    }

    // The reason goes to the terminal as well, so a run without a screen still says it.
    const bool headless = QApplication::platformName() == u"offscreen" || QApplication::platformName() == u"minimal";
    app::desktop::DesktopApplication desktop(arguments, [headless](const QString& reason) {
        std::fprintf(stderr, "skyvane: %s\n", reason.toUtf8().constData());
        if (headless)
            return;
        QMessageBox box(QMessageBox::Critical, QStringLiteral("Skyvane"), reason);
        box.setTextFormat(Qt::PlainText);
        box.exec();
    });
    QApplication::setQuitOnLastWindowClosed(false);
    QObject::connect(&desktop, &app::desktop::DesktopApplication::terminated, &application, &QApplication::quit);
    if (!desktop.launch())
        return 1;
    return QApplication::exec();
}
