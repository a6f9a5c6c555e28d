#pragma once

#include "gateway/FolderReader.h"
#include "gateway/SearchSource.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>

namespace quarry {

/// Searches a folder of documents. What appears, changes or goes in it is seen by the very next search: only folders
/// that changed are listed again, only files that changed are read again.
class FolderSource final : public SearchSource {
public:
    struct Options {
        QString folder;
        QString indexFile; ///< Kept between runs; empty for an index in memory.
        FolderReader::Progress progress;
    };
    /// Reads the whole folder first. On failure none, and one line for a person in error (empty when given up).
    [[nodiscard]] static std::unique_ptr<FolderSource> open(const Options& options, QString* error);

    [[nodiscard]] SearchAnswer search(const SearchRequest& request) override;
    [[nodiscard]] std::optional<DocumentPage> document(const QByteArray& path) override;
    [[nodiscard]] std::int64_t documentCount() override;

private:
    explicit FolderSource(std::unique_ptr<FolderReader> reader) : _reader(std::move(reader)) {}

    std::mutex _mutex;
    std::unique_ptr<FolderReader> _reader; ///< Only under the mutex, but for document().
};

} // namespace quarry
