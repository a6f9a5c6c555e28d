#pragma once

#include "engines/SearchService.h"
#include "model/ResultRecord.h"

#include <QByteArray>

#include <memory>

namespace quarry::bench {

/// What the extraction is measured against: the same records by way of libxml2's HTML parser and XPath, with the
/// expressions compiled once.
class TreeExtraction final {
public:
    explicit TreeExtraction(SearchService service);
    ~TreeExtraction();
    TreeExtraction(const TreeExtraction&) = delete;
    TreeExtraction& operator=(const TreeExtraction&) = delete;

    [[nodiscard]] ResultList records(const QByteArray& page, Date now) const;

private:
    struct Expressions;
    SearchService _service;
    std::unique_ptr<Expressions> _expressions;
};

} // namespace quarry::bench
