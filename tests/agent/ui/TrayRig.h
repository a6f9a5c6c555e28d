#pragma once

#include "agent/ui/TrayStatusItem.h"
#include "support/Screen.h"

namespace quarry {

/// A status item with the product's own pictures and English texts.
struct TrayRig {
    StringTable texts{agentResources(), {QStringLiteral("en")}};
    int reports = 0;
    std::vector<StatusItem::Tag> actions;
    TrayStatusItem item;

    explicit TrayRig(std::chrono::milliseconds patience = TrayStatusItem::Patience)
        : item(
              texts, agentResources(), [this] { ++reports; }, patience)
    {
        item.setActionHandler([this](StatusItem::Tag tag) { actions.push_back(tag); });
        item.setTitle(StatusItem::Tag::Refresh, QStringLiteral("Refresh Now (next in 12 min)"));
    }

    static QString agentResources()
    {
        return QStringLiteral(QUARRY_BUNDLE_DIR "/Agents/QuarrySpotterAgent.app/Contents/Resources");
    }

    static InfoText news()
    {
        const auto line = [](const QString& text, const QString& title) {
            return InfoText::Line{u'\n' + text + title, title.size()};
        };
        return {QStringLiteral("New Results"),
                {line(QStringLiteral("12 new results for "), QStringLiteral("mountain water & springs & a_b")),
                 line(QStringLiteral("1 new result for "), QStringLiteral("sourdough"))}};
    }
};

} // namespace quarry
