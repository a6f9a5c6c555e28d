#include "agent/LXSoftwareUpdates.h"

namespace quarry {

LXSoftwareUpdates::~LXSoftwareUpdates()
{
    if (_updater)
        _updater->setResultDelegate(nullptr);
}

void LXSoftwareUpdates::renew()
{
    _updater = _make();
}

void LXSoftwareUpdates::checkQuietly()
{
    renew();
    _updater->setCanWarnUser(false);
    _updater->setLogFlag(true);
    _updater->setProductReference(QStringLiteral("QS1"));
    _updater->setScriptURL(_updater->product().scriptUrl);
    _updater->checkVersionAsynchronous();
}

bool LXSoftwareUpdates::isShowingWindow() const
{
    return _updater && _updater->isShowingWindow();
}

QString LXSoftwareUpdates::currentVersion() const
{
    const std::optional<UpdateInfos> infos = _updater ? _updater->updateInfos() : std::nullopt;
    return infos ? infos->curentVersion : QString();
}

void LXSoftwareUpdates::askForDownloadUpdate(const QString& version, std::function<void(int)> answer)
{
    if (!_updater)
        return;
    _answer = std::move(answer);
    _updater->setResultDelegate(this);
    _updater->askForDownloadUpdate(version);
}

void LXSoftwareUpdates::updateResulteDidGetResult(int result)
{
    if (_answer)
        _answer(result);
}

} // namespace quarry
