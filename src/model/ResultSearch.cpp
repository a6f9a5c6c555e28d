#include "model/ResultSearch.h"

#include "model/RecordData.h"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <string_view>

namespace quarry {

namespace {

/// Most texts are, and are searched as they lie in the file, a million of them while somebody types.
bool isAscii(const StoredText& text)
{
    const std::string_view bytes = text.bytes();
    // Without a way out, so that many are looked at at once.
    return text.encoding() == StoredText::Encoding::Ascii &&
           (std::accumulate(bytes.begin(), bytes.end(), 0, [](int all, char each) { return all | each; }) & 0x80) == 0;
}

std::string foldedIfAscii(const QString& text)
{
    std::string folded = text.toStdString();
    if (qsizetype(folded.size()) != text.size())
        return {};
    std::transform(folded.begin(), folded.end(), folded.begin(), foldedAscii);
    return folded;
}

} // namespace

ResultSearch::ResultSearch(const QString& searchString)
    : _text(searchString), _asciiText(foldedIfAscii(searchString)), _needle(searchString)
{
}

bool ResultSearch::isInText(const StoredText& text) const
{
    return isAscii(text) ? _needle.isInAscii(text.bytes()) : _needle.isIn(text.toString());
}

bool ResultSearch::isInAddress(const StoredText& address) const
{
    return !_asciiText.empty() && isAscii(address) ? containsFoldedAscii(address.bytes(), _asciiText)
                                                   : address.toString().contains(_text, Qt::CaseInsensitive);
}

bool ResultSearch::matches(const ResultRecord& record) const
{
    const RecordData& data = record.data();
    return (data.has(RecordKey::Title) && isInText(data.text(RecordKey::Title))) ||
           (data.has(RecordKey::TextFromPage) && isInText(data.text(RecordKey::TextFromPage))) ||
           (data.has(RecordKey::Url) && isInAddress(data.text(RecordKey::Url)));
}

bool ResultSearch::isWithin(const ResultSearch& other) const
{
    return !other._text.isEmpty() && _text.contains(other._text, Qt::CaseInsensitive) &&
           _needle.contains(other._needle);
}

ResultList ResultSearch::filtered(const ResultList& records) const
{
    ResultList found;
    std::copy_if(records.begin(), records.end(), std::back_inserter(found),
                 [this](const ResultRecord& record) { return matches(record); });
    return found;
}

} // namespace quarry
