#include "BlacklistSamples.h"

#include <random>

namespace quarry::bench {

namespace {

/// The same numbers every time.
class Dice final {
public:
    explicit Dice(unsigned seed) : _engine(seed) {}
    int below(int bound) { return static_cast<int>(_engine() % static_cast<unsigned>(bound)); }
    template <typename List>
    auto oneOf(const List& list)
    {
        return list[below(static_cast<int>(list.size()))];
    }
    QString word()
    {
        static const QStringList syllables =
            QStringLiteral("ta ri no mel so van der ku lin po ga ste bri mon do fel ha zen cro pi wa tor ne sul")
                .split(u' ');
        QString text;
        for (int i = 2 + below(3); i > 0; --i)
            text += oneOf(syllables);
        return text;
    }

private:
    std::mt19937 _engine;
};

const QStringList& tops()
{
    static const QStringList list = QStringLiteral("com org net de co.uk fr info").split(u' ');
    return list;
}

const QStringList& extensions()
{
    static const QStringList list = QStringLiteral("html htm php pdf aspx jpg zip xml doc mp3 torrent").split(u' ');
    return list;
}

QString hostOf(Dice& dice)
{
    return (dice.below(2) == 0   ? QStringLiteral("www.")
            : dice.below(4) == 0 ? dice.word() + u'.'
                                 : QString()) +
           dice.word() + (dice.below(3) == 0 ? u'-' + dice.word() : QString()) + u'.' + dice.oneOf(tops());
}

BlacklistRule rule(const QString& text, qint64 type, int number)
{
    return {text, type, true, number % 4 == 0};
}

QString expression(Dice& dice, int number)
{
    const QString word = dice.word() + QString::number(number);
    switch (number % 25) {
    case 0: // Nothing to look for.
        return QStringLiteral("[0-9]{%1}[a-f][0-9]+[g-z]{3}[0-9]").arg(6 + dice.below(4));
    case 1:
    case 2:
    case 3:
        return QStringLiteral("^https?://([a-z0-9-]+\\.)*%1\\.(com|net|org)/").arg(word);
    case 4:
    case 5:
    case 6:
        return QStringLiteral("(banner|popup|%1)[0-9]+x[0-9]+\\.(gif|png)$").arg(word);
    case 7:
    case 8:
        return QStringLiteral("[?&](%1|%2)_?id=[0-9a-f]{4,}").arg(word, dice.word() + QStringLiteral("trk"));
    case 9: // Some of these catch something.
        return QStringLiteral("/%1[a-z]*/%2").arg(dice.word().left(3), dice.word().left(3));
    case 10:
        return QStringLiteral("/(%1|%2)/.*\\.%3$").arg(word, dice.word() + u'q', dice.oneOf(extensions()));
    default:
        return dice.below(2) == 0 ? QStringLiteral("%1[-_]?[a-z]*\\.(html?|php)").arg(word)
                                  : QStringLiteral("://[^/]*%1[^/]*/").arg(word);
    }
}

} // namespace

QList<QString> sampleAddresses(int count)
{
    Dice dice(20261121);
    QList<QString> addresses;
    for (int i = 0; i < count; ++i) {
        QString text = (dice.below(2) == 0 ? QStringLiteral("https://") : QStringLiteral("http://")) + hostOf(dice);
        for (int depth = dice.below(4); depth > 0; --depth)
            text += u'/' + dice.word() + (dice.below(4) == 0 ? QString::number(dice.below(3000)) : QString());
        if (dice.below(2) == 0)
            text += u'/' + dice.word() + u'.' + dice.oneOf(extensions());
        if (dice.below(4) == 0)
            text += QStringLiteral("?id=%1&%2=%3").arg(dice.below(100000)).arg(dice.word(), dice.word());
        addresses.append(text);
    }
    return addresses;
}

QList<BlacklistRule> sampleTextRules(int count)
{
    Dice dice(5);
    QList<BlacklistRule> rules;
    for (int i = 0; i < count; ++i) {
        if (i % 3 == 0)
            rules.append(rule(dice.word() + dice.word() + dice.word(), BlacklistType::Text, i));
        else if (i % 3 == 1)
            rules.append(rule(hostOf(dice), BlacklistType::Domain, i));
        else
            rules.append(
                rule(dice.word().left(2 + dice.below(4)) + QString::number(i % 10), BlacklistType::FileType, i));
    }
    return rules;
}

QList<BlacklistRule> sampleExpressionRules(int count)
{
    Dice dice(20);
    QList<BlacklistRule> rules;
    for (int i = 0; i < count; ++i)
        rules.append(rule(expression(dice, i), BlacklistType::RegularExpression, i));
    return rules;
}

} // namespace quarry::bench
