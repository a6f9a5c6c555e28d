#pragma once

#include "platform/DistributedNotifications.h"
#include "platform/Workspace.h"

#include <utility>
#include <vector>

namespace quarry::test {

/// A desktop that opens nothing and notes what it was asked for.
class NotingWorkspace final : public Workspace {
public:
    bool openBundle(const QString& path) override { return noted(opened, path); }
    bool openFile(const QString& path, const QString&) override { return noted(opened, path); }
    bool openAddress(const QString& address) override { return isWilling && noted(addresses, address); }
    bool launch(const QString& program, const QStringList& arguments) override
    {
        return noted(opened, program + u' ' + arguments.join(u' '));
    }
    bool moveToTrash(const QString&) override { return false; }

    bool isWilling = true; ///< To open addresses.
    QStringList opened;    ///< Bundles, files, and programs with their arguments.
    QStringList addresses; ///< In the browser.

private:
    static bool noted(QStringList& list, const QString& text)
    {
        list.append(text);
        return true;
    }
};

/// The notifications of a session with one program in it: delivers at once what is posted, and notes it.
class LocalNotifications final : public DistributedNotifications {
public:
    void post(const QString& name, const UserInfo& userInfo) override
    {
        names.append(name);
        last = userInfo;
        for (const auto& [observed, observer] : _observers) {
            if (observed == name)
                observer(userInfo);
        }
    }
    void addObserver(const QString& name, Observer observer) override
    {
        _observers.emplace_back(name, std::move(observer));
    }

    QStringList names;
    UserInfo last;

private:
    std::vector<std::pair<QString, Observer>> _observers;
};

} // namespace quarry::test
