#pragma once

#include "model/ResultRecord.h"

#include <QSet>
#include <QString>

namespace quarry {

/// Names some results of one query, so that they are found again after a merge or a reload replaced the records: by
/// their "link uuid key", and where a record has none by its address. A plain value.
class ResultKeys final {
public:
    ResultKeys() = default;
    explicit ResultKeys(const ResultList& records);

    [[nodiscard]] static QString keyOf(const ResultRecord& record);

    void add(const ResultRecord& record) { _keys.insert(keyOf(record)); }
    [[nodiscard]] bool contains(const ResultRecord& record) const { return _keys.contains(keyOf(record)); }
    [[nodiscard]] bool isEmpty() const { return _keys.isEmpty(); }
    [[nodiscard]] qsizetype size() const { return _keys.size(); }

private:
    QSet<QString> _keys;
};

} // namespace quarry
