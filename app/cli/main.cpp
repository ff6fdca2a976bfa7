#include "app/cli/decode_command.h"
#include "app/cli/tool_command.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

namespace {

void printUsage(std::FILE* stream)
{
    std::fputs("usage: skyvane-cli decode FILE\n"
               "       skyvane-cli [BACKEND] -s | -s -x | -I | watch [--interval SECONDS] [--count N]\n\n"
               "commands:\n"
               "  decode FILE           every beacon and probe response of a pcap or pcapng file as JSON lines\n",
               stream);
    std::fputs(cli::toolUsage().toUtf8().constData(), stream);
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("skyvane-cli"));

    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.size() == 1 && (arguments[0] == u"-h" || arguments[0] == u"--help")) {
        printUsage(stdout);
        return 0;
    }
    if (!arguments.isEmpty() && arguments[0] == u"decode") {
        if (arguments.size() == 2)
            return cli::decodeCapture(arguments[1], stdout, stderr);
        printUsage(stderr);
        return 2;
    }

    QString error;
    const auto request = cli::parseToolArguments(arguments, &error);
    if (!request) {
        printUsage(stderr);
        if (!arguments.isEmpty())
            std::fprintf(stderr, "\nskyvane-cli: %s\n", error.toUtf8().constData());
        return 2;
    }
    return cli::runToolRequest(*request, stdout, stderr);
}
