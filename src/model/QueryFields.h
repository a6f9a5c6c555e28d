#pragma once

#include "archive/OpaqueObject.h"
#include "model/ResultRecord.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>

namespace quarry {

/// A filter object of a query ("filtersResultKey"), opaque to the model: carried through unchanged. Equality is
/// identity.
using FilterObject = std::shared_ptr<const OpaqueObject>;

/// An element of a list that is not of the kind the list is for, carried through at its place.
struct OpaqueElement {
    qsizetype index = 0;
    std::shared_ptr<const OpaqueObject> value;
};

/// The stored fields of one node, without its place in the tree. Copying is cheap: the lists are implicitly
/// shared, so a copy taken under the tree lock is a consistent snapshot.
struct QueryFields {
    std::optional<QString> _title;
    /// The words with blanks as "+"; a folder's name; a combined query's joined texts.
    std::optional<QString> _query;
    /// The reference date: never updated. Absent for a folder.
    std::optional<Date> _lastUpdate;
    std::optional<ResultList> _currentResult;
    std::optional<ResultList> _hiddenResults;
    std::optional<QList<FilterObject>> _urlFilters;
    /// Host to true.
    std::optional<QMap<QString, bool>> _excludedDomains;
    QString _uuid;
    QString _keyPath;
    bool _queryDisabled = false;
    bool _computeCheckSumOfLinks = false;
    bool _isAdvancedQuery = false;
    std::optional<qint64> _wordsRestriction;
    std::optional<QString> _websiteRestriction;
    std::optional<QString> _urlRegularExpression;
    bool _isSuscribedToBlacklist = false;
    std::optional<QStringList> _combinedQueryList;
    bool _isFolder = false;
    std::optional<QString> _highlightString;
    bool _highlightState = false;
    /// Entries of the stored node that this program does not know, written back as they were.
    QList<OpaqueEntry> _unknownEntries;
    QList<OpaqueElement> _unknownChilds;
    QList<OpaqueElement> _unknownCombinedQueries;
    /// The node in the file it was read from, to which values that are carried through may refer; none for a new one.
    std::shared_ptr<const OpaqueObject> _source;
};

} // namespace quarry
