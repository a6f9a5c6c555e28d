#pragma once

#include "updater/LXUpdater.h"

#include <QStringList>

#include <vector>

namespace quarry::test {

/// Keeps alerts until the test answers them.
class FakeAlerts final : public UpdaterAlerts {
public:
    void show(const UpdaterAlert& alert, std::function<void(int)> answered) override
    {
        shown.push_back(alert);
        _answers.push_back(std::move(answered));
    }
    [[nodiscard]] bool isShowing() const override { return !_answers.empty(); }
    void bringToFront() override { ++fronts; }

    /// Answers the oldest open alert.
    void answer(int button)
    {
        const auto answered = std::move(_answers.front());
        _answers.erase(_answers.begin());
        if (answered)
            answered(button);
    }
    [[nodiscard]] QStringList titles() const
    {
        QStringList texts;
        for (const UpdaterAlert& alert : shown)
            texts.append(alert.title);
        return texts;
    }

    std::vector<UpdaterAlert> shown;
    int fronts = 0;

private:
    std::vector<std::function<void(int)>> _answers;
};

/// Notes what an update window is told, in the order of the calls.
class FakeUpdaterWindow final : public UpdaterWindow {
public:
    struct Notes {
        QStringList calls;
        std::vector<UpdateInfos> offers;
        double received = 0;
        double expected = 0;
        LXUpdater* master = nullptr;
        bool showing = false;
    };
    explicit FakeUpdaterWindow(Notes& notes) : _notes(notes) {}

    void setMaster(LXUpdater* master) override { _notes.master = master; }
    void showAskUpdate(const UpdateInfos& infos) override
    {
        _notes.offers.push_back(infos);
        _notes.showing = true;
    }
    void center() override { _notes.calls.append(QStringLiteral("center")); }
    void orderFrontRegardless() override { _notes.showing = true; }
    void hide() override
    {
        _notes.calls.append(QStringLiteral("hide"));
        _notes.showing = false;
    }
    [[nodiscard]] bool isShowing() const override { return _notes.showing; }
    void setStatus(const QString& text) override { _notes.calls.append(text); }
    void setProgressBarIndeterminate(bool indeterminate) override
    {
        _notes.calls.append(indeterminate ? QStringLiteral("indeterminate") : QStringLiteral("determinate"));
    }
    void setProgressBarIndeterminate(bool indeterminate, double, double maxValue, double) override
    {
        setProgressBarIndeterminate(indeterminate);
        _notes.expected = maxValue;
    }
    void setDownloadStartTime() override { _notes.calls.append(QStringLiteral("start time")); }
    void incrementProgressBarValue(double bytes) override { _notes.received += bytes; }

private:
    Notes& _notes;
};

class FakeUpdaterDefaults final : public UpdaterDefaults {
public:
    [[nodiscard]] bool warnAgainUserForMoreRecentOS() const override { return warnAgain; }
    void setWarnAgainUserForMoreRecentOS(bool again) override { warnAgain = again; }
    bool warnAgain = true;
};

/// A loader of checks that answers from a function; noted as stopped or not.
class FakeUpdateLoader final : public UpdateLoader {
public:
    using Answer = std::function<LoadedPage(const QByteArray& address)>;
    explicit FakeUpdateLoader(Answer answer) : _answer(std::move(answer)) {}
    [[nodiscard]] LoadedPage load(const QByteArray& address) override { return _answer(address); }
    void stop() override {}

private:
    Answer _answer;
};

} // namespace quarry::test
