#include "app/cli/decode_command.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>
#include <cstring>

namespace {

struct Command {
    const char* name;
    const char* arguments;
    const char* summary;
    qsizetype minArguments;
    qsizetype maxArguments;
    int (*run)(const QStringList& arguments);
};

int runDecode(const QStringList& arguments) { return cli::decodeCapture(arguments.first(), stdout, stderr); }

const Command commands[] = {
    {"decode", "FILE", "print every beacon and probe response of a pcap or pcapng file as JSON lines", 1, 1,
     runDecode},
};

void printUsage(std::FILE* stream)
{
    std::fputs("usage: skyvane-cli COMMAND [ARGUMENTS]\n\ncommands:\n", stream);
    for (const Command& command : commands)
        std::fprintf(stream, "  %s %-6s %s\n", command.name, command.arguments, command.summary);
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
    if (!arguments.isEmpty()) {
        const QByteArray name = arguments[0].toUtf8();
        for (const Command& command : commands) {
            if (std::strcmp(command.name, name.constData()) != 0)
                continue;
            const QStringList rest = arguments.mid(1);
            if (rest.size() < command.minArguments || rest.size() > command.maxArguments)
                break;
            return command.run(rest);
        }
    }
    printUsage(stderr);
    return 2;
}
