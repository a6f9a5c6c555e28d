#include "gateway/RunningGateway.h"

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace quarry {

namespace {

/// The program itself, as a person or a script starts it.
class Program {
public:
    explicit Program(const QStringList& arguments)
    {
        _process.start(QStringLiteral(QUARRY_BUNDLE_DIR "/bin/quarry-gateway"), arguments);
    }
    /// The line it prints when it is ready.
    [[nodiscard]] QString ready()
    {
        while (!_process.canReadLine() && _process.state() != QProcess::NotRunning)
            _process.waitForReadyRead(-1);
        return QString::fromUtf8(_process.readLine()).trimmed();
    }
    int end()
    {
        _process.waitForFinished(-1);
        return _process.exitStatus() == QProcess::NormalExit ? _process.exitCode() : -1;
    }
    int terminate()
    {
        _process.terminate();
        return end();
    }
    [[nodiscard]] QString errors() { return QString::fromUtf8(_process.readAllStandardError()); }
    [[nodiscard]] QString output() { return QString::fromUtf8(_process.readAllStandardOutput()); }

private:
    QProcess _process;
};

class GatewayProgram : public testing::Test {
protected:
    void SetUp() override
    {
        QFile file(folder.filePath(QStringLiteral("one.txt")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("walnut");
    }
    [[nodiscard]] QStringList arguments(const QStringList& more = {}) const
    {
        return QStringList({QStringLiteral("--folder"), folder.path()}) + more;
    }
    QTemporaryDir folder;
};

TEST_F(GatewayProgram, SaysWhereItListensServesAndEndsOnATermination)
{
    const QString services = folder.filePath(QStringLiteral("SearchServices.plist"));
    Program program(arguments({QStringLiteral("--write-services"), services}));
    const QString line = program.ready();
    ASSERT_TRUE(line.startsWith(QStringLiteral("listening on http://127.0.0.1:")))
        << qPrintable(line + program.errors());
    EXPECT_TRUE(line.endsWith(QStringLiteral(", 1 documents"))) << qPrintable(line);
    const int port = line.section(u':', 2).section(u',', 0, 0).toInt();
    EXPECT_EQ(httplib::Client("127.0.0.1", port).Get("/doc/one.txt")->status, 200);

    Program second(arguments({QStringLiteral("--port"), QString::number(port)}));
    EXPECT_EQ(second.end(), 1);
    EXPECT_TRUE(second.errors().contains(QStringLiteral("the port is in use"))) << qPrintable(second.errors());

    QFile written(services);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_EQ(written.readAll().count("<integer>" + QByteArray::number(port) + "</integer>"), 5);
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_EQ(program.errors(), QString());
}

TEST_F(GatewayProgram, SaysWhatIsWrong)
{
    struct Case {
        QStringList arguments;
        int status;
        const char* says;
    };
    const QString missing = folder.filePath(QStringLiteral("missing"));
    const QList<Case> cases = {
        {{QStringLiteral("--folder"), missing}, 1, "cannot read the folder"},
        {{QStringLiteral("--folder"), folder.filePath(QStringLiteral("one.txt"))}, 1, "cannot read the folder"},
        {arguments({QStringLiteral("--index"), QStringLiteral("/")}), 1, "cannot use the index"},
        {arguments({QStringLiteral("--index"), QStringLiteral("/dev/null/x")}), 1, "cannot use the index"},
        {arguments({QStringLiteral("--write-services"), missing + QStringLiteral("/x")}), 1, "cannot write"},
        {arguments({QStringLiteral("--listen"), QStringLiteral("0.0.0.0")}), 2, "--allow-remote"},
        {arguments({QStringLiteral("--listen"), QStringLiteral("192.0.2.1"), QStringLiteral("--allow-remote")}), 1,
         "cannot listen"},
        {arguments({QStringLiteral("--port"), QStringLiteral("70000")}), 2, "--port"},
        {arguments({QStringLiteral("--nonsense")}), 2, "--nonsense"},
    };
    for (const Case& each : cases) {
        Program program(each.arguments);
        EXPECT_EQ(program.end(), each.status) << qPrintable(each.arguments.join(u' '));
        const QString errors = program.errors();
        EXPECT_TRUE(errors.contains(QString::fromUtf8(each.says))) << qPrintable(errors);
    }
    Program help({QStringLiteral("--help")});
    EXPECT_EQ(help.end(), 0);
    EXPECT_TRUE(help.output().contains(QStringLiteral("Examples:")));
}

} // namespace

} // namespace quarry
