#include "gateway/RunningGateway.h"

#include <QProcess>
#include <QRegularExpression>

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
    void SetUp() override { ASSERT_TRUE(test::writeFile(folder.filePath(QStringLiteral("one.txt")), "walnut")); }
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

    EXPECT_EQ(test::contentOf(services).count("<integer>" + QByteArray::number(port) + "</integer>"), 5);
    EXPECT_EQ(program.terminate(), 0);
    EXPECT_EQ(program.errors(), QString());
}

TEST_F(GatewayProgram, SaysWhatIsWrong)
{
    // Arguments, status and complaint; "." stands for the folder.
    const std::tuple<const char*, int, const char*> cases[] = {
        {"--folder ./missing", 1, "cannot read the folder"},
        {"--folder ./one.txt", 1, "cannot read the folder"},
        {"--folder . --index /", 1, "cannot use the index"},
        {"--folder . --index /dev/null/x", 1, "cannot use the index"},
        {"--folder . --write-services ./missing/x", 1, "cannot write"},
        {"--folder . --listen 0.0.0.0", 2, "--allow-remote"},
        {"--folder . --listen 192.0.2.1 --allow-remote", 1, "cannot listen"},
        {"--folder . --port 70000", 2, "--port"},
        {"--folder . --nonsense", 2, "--nonsense"},
    };
    for (const auto& [arguments, status, complaint] : cases) {
        QStringList all = QString::fromUtf8(arguments).split(u' ');
        all[1].replace(0, 1, folder.path());
        all.replaceInStrings(QRegularExpression(QStringLiteral("^\\./")), folder.path() + u'/');
        Program program(all);
        EXPECT_EQ(program.end(), status) << arguments;
        const QString errors = program.errors();
        EXPECT_TRUE(errors.contains(QString::fromUtf8(complaint))) << qPrintable(errors);
    }
    Program help({QStringLiteral("--help")});
    EXPECT_EQ(help.end(), 0);
    EXPECT_TRUE(help.output().contains(QStringLiteral("Examples:")));
}

} // namespace

} // namespace quarry
