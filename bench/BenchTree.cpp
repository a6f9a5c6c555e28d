#include "BenchTree.h"

#include <random>

namespace quarry::bench {

namespace {

class TextMaker final {
public:
    int number(int below) { return static_cast<int>(_random() % static_cast<unsigned>(below)); }

    /// Words up to about this many characters; every eighth text is in another script.
    QString words(int length)
    {
        static const QStringList plain =
            QStringLiteral(
                "timetable rolling stock regional station archive results the of and in for a to with report annual "
                "history "
                "signal works line opening official schedule freight museum photographs national railway network")
                .split(u' ');
        static const QStringList other = QStringLiteral("時刻表 鉄道 駅 公式サイト 路線図 Fahrpläne für Züge où être "
                                                        "naïve café Œuvre расписание поездов станция")
                                             .split(u' ');
        const QStringList& source = number(8) == 0 ? other : plain;
        QString text;
        while (text.size() < length)
            text += source.at(number(int(source.size()))) + u' ';
        return text.trimmed();
    }

    QString hex(int length)
    {
        QString text;
        for (int i = 0; i < length; ++i)
            text += QChar(u"0123456789abcdef"[number(16)]);
        return text;
    }

    QString uuid()
    {
        const QString digits = hex(32).toUpper();
        return digits.left(8) + u'-' + digits.mid(8, 4) + u'-' + digits.mid(12, 4) + u'-' + digits.mid(16, 4) + u'-' +
               digits.mid(20);
    }

    QString address()
    {
        return QStringLiteral("http://www.%1.example.org/%2/%3/%4.html?id=%5")
            .arg(hex(8), hex(6), hex(12), hex(16), QString::number(number(100000)));
    }

private:
    std::mt19937 _random{20011};
};

ResultRecord makeRecord(TextMaker& make, const QString& queryUuid, int rank)
{
    return ResultRecord()
        .withTitle(make.words(40 + make.number(30)))
        .withUrl(Url::fromStored(make.address()))
        .withTextFromPage(make.words(130 + make.number(110)))
        .withUserSaw(make.number(2) == 0)
        .withDateOfFind(Date(400000000.0 + make.number(1 << 26) + 0.25))
        .withRank(rank)
        .withRating(make.number(6))
        .withVisible(true)
        .withParentQueryUuid(queryUuid)
        .withLinkUuid(make.uuid())
        .withEngineId(QString::number(1 + make.number(5)))
        .withChecksum(make.hex(32))
        .withNewSincePrevious(make.number(4) == 0);
}

} // namespace

QueryCorePtr makeTree(int queries, int resultsPerQuery)
{
    TextMaker make;
    const QueryCorePtr root = QueryCore::initWithQueryFolder(QStringLiteral(""));
    QueryCorePtr folder;
    for (int i = 0; i < queries; ++i) {
        if (i % 20 == 0) {
            folder = QueryCore::initWithQueryFolder(make.words(12));
            root->addChild(folder);
        }
        const QueryCorePtr query = QueryCore::initWithQuery(make.words(25));
        ResultList results;
        for (int rank = 1; rank <= resultsPerQuery; ++rank)
            results.append(makeRecord(make, query->UUID(), rank));
        if (!query->replaceResultsIfUnchanged(query->snapshot().generation, results, Date(430000000.0)))
            return nullptr;
        folder->addChild(query);
    }
    return root;
}

} // namespace quarry::bench
