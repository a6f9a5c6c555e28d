#include "support/EventWait.h"
#include "support/QtPrinting.h"
#include "support/SessionBusDaemon.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

using namespace quarry;

namespace {

enum class Bus { None, Session };

/// Copies of one program that know of each other by one folder.
class SingleInstanceTest : public testing::Test {
protected:
    using Program = std::unique_ptr<QProcess>;

    ~SingleInstanceTest() override { end(); }

    QProcess& start(Bus bus, const QStringList& files, const QString& token = {})
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        if (bus == Bus::None)
            environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
        environment.insert(QStringLiteral("XDG_ACTIVATION_TOKEN"), token);
        programs.push_back(std::make_unique<QProcess>());
        QProcess& program = *programs.back();
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        program.start(QStringLiteral(INSTANCE_CHILD), QStringList{folder.path()} + files);
        return program;
    }
    [[nodiscard]] static QString lineOf(QProcess& program)
    {
        while (!program.canReadLine() && program.waitForReadyRead(60000))
            ;
        return QString::fromUtf8(program.readLine().trimmed());
    }
    void end()
    {
        for (const Program& program : programs) {
            program->kill();
            program->waitForFinished(60000);
        }
        programs.clear();
    }

    QTemporaryDir folder;
    test::SessionBusDaemon daemon;
    std::vector<Program> programs;
};

TEST_F(SingleInstanceTest, HandsOverToTheOneThatRuns)
{
    const QString file = QStringLiteral("/tmp/a b%20ü#?.qsexport");
    for (const auto& [first, second] : {std::pair(Bus::Session, Bus::Session), std::pair(Bus::None, Bus::None),
                                        std::pair(Bus::None, Bus::Session), std::pair(Bus::Session, Bus::None)}) {
        QProcess& running = start(first, {file});
        ASSERT_EQ(lineOf(running), QStringLiteral("first"));
        EXPECT_EQ(lineOf(start(second, {}, QStringLiteral("token"))), QStringLiteral("handed over"));
        EXPECT_EQ(lineOf(running), QStringLiteral("asked:  token"));
        EXPECT_EQ(lineOf(start(second, {file, QStringLiteral("/b")})), QStringLiteral("handed over"));
        EXPECT_EQ(lineOf(running), QStringLiteral("asked: ") + file + QStringLiteral("|/b"));
        end();
    }
}

TEST_F(SingleInstanceTest, OneOfManyStartedAtOnceIsTheFirst)
{
    for (const Bus bus : {Bus::Session, Bus::None}) {
        constexpr int Copies = 8;
        for (int copy = 0; copy < Copies; ++copy)
            start(bus, {QStringLiteral("/%1").arg(copy)});
        QProcess* first = nullptr;
        for (const Program& program : programs) {
            const QString line = lineOf(*program);
            if (line == QLatin1String("first"))
                first = program.get();
            else
                EXPECT_EQ(line, QStringLiteral("handed over"));
        }
        ASSERT_TRUE(first);
        QStringList asked;
        for (int copy = 1; copy < Copies; ++copy)
            asked += lineOf(*first);
        EXPECT_EQ(asked.removeDuplicates(), 0) << "each was heard once";
        EXPECT_FALSE(asked.contains(QString()));
        end();
    }
}

TEST_F(SingleInstanceTest, ComesBackToABusThatRestarts)
{
    QProcess& running = start(Bus::Session, {});
    ASSERT_EQ(lineOf(running), QStringLiteral("first"));
    daemon.stop();
    daemon.start();
    const QString name = QStringLiteral("of-the-test");
    {
        QDBusConnection connection = QDBusConnection::connectToBus(QString::fromUtf8(daemon.address()), name);
        QDBusMessage open = QDBusMessage::createMethodCall(
            QStringLiteral("com.zep.Quarry-Test"), QStringLiteral("/com/zep/Quarry_Test"),
            QStringLiteral("org.freedesktop.Application"), QStringLiteral("Open"));
        open.setArguments(
            {QStringList{QStringLiteral("file:///x%20y"), QStringLiteral("http://127.0.0.1/")}, QVariantMap()});
        EXPECT_TRUE(test::waitFor([&] { return connection.call(open).type() == QDBusMessage::ReplyMessage; }));
    }
    QDBusConnection::disconnectFromBus(name);
    EXPECT_EQ(lineOf(running), QStringLiteral("asked: /x y"));
}

} // namespace
