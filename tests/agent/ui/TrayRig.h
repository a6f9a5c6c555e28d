#pragma once

#include "agent/ui/TrayStatusItem.h"
#include "support/Screen.h"

namespace quarry {

using namespace Qt::Literals::StringLiterals;

/// A status item with the product's own pictures and English texts.
struct TrayRig {
    StringTable texts{agentResources(), {u"en"_s}};
    int reports = 0;
    std::vector<StatusItem::Tag> actions;
    TrayStatusItem item;

    explicit TrayRig(std::chrono::milliseconds patience = TrayStatusItem::Patience)
        : item(
              texts, agentResources(), [this] { ++reports; }, patience)
    {
        item.setActionHandler([this](StatusItem::Tag tag) { actions.push_back(tag); });
        item.setTitle(StatusItem::Tag::Refresh, u"Refresh Now (next in 12 min)"_s);
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
        return {u"New Results"_s,
                {line(u"12 new results for "_s, u"mountain water & springs & a_b"_s),
                 line(u"1 new result for "_s, u"sourdough"_s)}};
    }
};

} // namespace quarry
