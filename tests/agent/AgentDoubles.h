#pragma once

#include "agent/AgentParts.h"
#include "support/DesktopDoubles.h"
#include "support/ManualTimers.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <deque>
#include <optional>
#include <utility>

// What the agent works with, as a test wants it. Each double notes what it is told in one list, in order.

namespace quarry::test {

using namespace Qt::Literals::StringLiterals;

class FakeProcesses final : public ProcessTable {
public:
    explicit FakeProcesses(QStringList& notes) : _notes(notes) {}
    [[nodiscard]] std::optional<std::vector<ProcessRecord>> processes() override
    {
        ++readings;
        return readable ? std::optional(table) : std::nullopt;
    }
    bool interrupt(std::int64_t processId) override
    {
        _notes.append(u"interrupt %1"_s.arg(processId));
        return true;
    }
    bool terminate(std::int64_t) override { return false; }
    [[nodiscard]] std::int64_t ownProcessId() const override { return 4711; }

    void start(const QString& command, std::int64_t id) { table.push_back({command, id, 1000, false}); }
    void end(std::int64_t id)
    {
        std::erase_if(table, [id](const ProcessRecord& process) { return process.processId == id; });
    }

    std::vector<ProcessRecord> table;
    bool readable = true;
    int readings = 0;

private:
    QStringList& _notes;
};

class FakeWorkspace final : public Workspace {
public:
    explicit FakeWorkspace(QStringList& notes) : _notes(notes) {}
    bool openBundle(const QString& path) override { return note(u"open "_s + path.section(u'/', -1)); }
    bool openFile(const QString& path, const QString& bundle) override
    {
        return note(u"open %1 with %2"_s.arg(path, bundle.section(u'/', -1)));
    }
    bool openAddress(const QString&) override { return false; }
    bool launch(const QString& program, const QStringList& arguments) override
    {
        launched = arguments;
        return note(u"launch "_s + program.section(u'/', -1));
    }
    bool moveToTrash(const QString&) override { return false; }

    bool works = true;
    QStringList launched;

private:
    bool note(const QString& text)
    {
        _notes.append(text);
        return works;
    }
    QStringList& _notes;
};

class FakeUserNotifications final : public UserNotificationCenter {
public:
    void deliver(const UserNotification& notification) override
    {
        bodies.append(notification.informativeText);
        shown.append(++_last);
    }
    [[nodiscard]] QList<Identifier> delivered() const override { return shown; }
    void remove(Identifier notification) override { shown.removeAll(notification); }
    void removeAllDelivered() override { shown.clear(); }
    void setActivationHandler(std::function<void(Identifier)> handler) override { click = std::move(handler); }

    QList<Identifier> shown;
    QStringList bodies; ///< Of all that were ever delivered.
    std::function<void(Identifier)> click;

private:
    Identifier _last = 0;
};

class FakeLoginItems final : public LoginItemList {
public:
    [[nodiscard]] QList<Item> items() override { return list; }
    bool append(const QString& bundlePath) override
    {
        list.append({QString(), bundlePath, false, bundlePath});
        return true;
    }
    bool remove(const Item& item) override
    {
        return list.removeIf([&](const Item& other) { return other.identifier == item.identifier; }) > 0;
    }
    QList<Item> list;
};

class FakeStatusItem final : public StatusItem {
public:
    explicit FakeStatusItem(QStringList& notes) : _notes(notes) {}
    void show() override { _notes.append(u"status item"_s); }
    void setIcon(Icon icon) override { icons += icon == Icon::Plain ? u'.' : u'*'; }
    void setTitle(Tag item, const QString& title) override
    {
        ++titlesSet;
        titles[item] = title;
    }
    void setEnabled(Tag item, bool on) override { enabled[item] = on; }
    void setInfo(const InfoText& text) override
    {
        ++infosSet;
        info = text.body();
    }
    void removeInfo() override { info = std::nullopt; }
    void setActionHandler(std::function<void(Tag)> handler) override { choose = std::move(handler); }

    /// "45 minutes (refresh, open)": the title of the refresh item, and what can be chosen.
    [[nodiscard]] QString menu()
    {
        return titles[Tag::Refresh] + u" (%1%2)"_s.arg(enabled[Tag::Refresh] ? u"refresh"_s : QString(),
                                                       enabled[Tag::OpenApplication] ? u" open"_s : QString());
    }

    QString icons; ///< Every one that was set: "." plain, "*" highlighted.
    std::map<Tag, QString> titles;
    std::map<Tag, bool> enabled;
    int titlesSet = 0;
    int infosSet = 0;
    std::optional<QString> info;
    std::function<void(Tag)> choose;

private:
    QStringList& _notes;
};

class KeptAlerts final : public Alerts {
public:
    void ask(const Alert& alert, std::function<void(int)> given) override
    {
        last = alert;
        answer = std::move(given);
    }
    std::optional<Alert> last;
    std::function<void(int)> answer;
};

/// A database that is looked at from another thread: what a look finds is what was there when it began, and it comes
/// with what the event loop does next, or, when that takes long, when a test says so.
class FakeResults final : public NewResults {
public:
    explicit FakeResults(ManualTimers& timers) : _timers(timers) {}
    void look(std::function<void()> seen) override
    {
        ++looks;
        auto end = [this, found = DatabaseNews{!queries.isEmpty(), queries}, seen = std::move(seen)] {
            _news = found;
            seen();
        };
        if (takesLong)
            _begun.push_back(std::move(end));
        else
            _timers.post(std::move(end));
    }
    [[nodiscard]] const DatabaseNews& news() const override { return _news; }
    /// Ends the first of the looks that take long.
    void endLook()
    {
        ASSERT_FALSE(_begun.empty());
        std::exchange(_begun.front(), nullptr)();
        _begun.pop_front();
    }

    QList<QuerySummary> queries;
    bool takesLong = false;
    int looks = 0;

private:
    ManualTimers& _timers;
    DatabaseNews _news;
    std::deque<std::function<void()>> _begun;
};

class FakeSoftwareUpdates final : public SoftwareUpdates {
public:
    void renew() override {}
    void checkQuietly() override { ++checks; }
    [[nodiscard]] bool isShowingWindow() const override { return showsWindow; }
    [[nodiscard]] QString currentVersion() const override { return version; }
    void askForDownloadUpdate(const QString& offer, std::function<void(int)> given) override
    {
        offered = offer;
        answer = std::move(given);
    }
    int checks = 0;
    bool showsWindow = false;
    QString version;
    QString offered;
    std::function<void(int)> answer;
};

class NotingLogger final : public Logger {
public:
    void logString(const QString& text) override { lines.append(text); }
    QStringList lines;
};

} // namespace quarry::test
