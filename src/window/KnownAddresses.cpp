#include "window/KnownAddresses.h"

#include <QSet>

#include <algorithm>

namespace quarry {

namespace {

constexpr qsizetype Most = 400;
constexpr qsizetype MostOfOther = 20; ///< Of each query that is not the one in question.

class Collection final {
public:
    void addFrom(const QueryCore& query, qsizetype most)
    {
        const ResultList results = query.snapshot().fields._currentResult.value_or(ResultList());
        for (qsizetype index = 0; index < std::min(most, results.size()) && !isFull(); ++index) {
            const QString address = results.at(index).urlText().value_or(QString());
            if (address.isEmpty() || _there.contains(address))
                continue;
            _there.insert(address);
            _addresses.append(address);
        }
    }
    void addBelow(const QueryCorePtr& node)
    {
        addFrom(*node, MostOfOther);
        const QList<QueryCorePtr> childs = node->childs().value_or(QList<QueryCorePtr>());
        for (const QueryCorePtr& child : childs) {
            if (!isFull())
                addBelow(child);
        }
    }
    [[nodiscard]] const QStringList& addresses() const { return _addresses; }

private:
    [[nodiscard]] bool isFull() const { return _addresses.size() >= Most; }

    QStringList _addresses;
    QSet<QString> _there;
};

} // namespace

QStringList knownAddresses(const QueryCorePtr& root, const QueryCorePtr& first)
{
    Collection collection;
    if (first)
        collection.addFrom(*first, Most);
    collection.addBelow(root);
    return collection.addresses();
}

} // namespace quarry
