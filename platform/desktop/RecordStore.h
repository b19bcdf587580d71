// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Record.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace Desk {

/// The recording schedule in a database of the box's files. What has been written outlives a kill of the process. One
/// thread at a time; failures are logged.
class RecordStore
{
public:
    /// Recordings as they are to be kept; none for those that are to be removed.
    using Changes = std::map<KVR_ID, std::optional<Record>>;

    enum class Outcome {
        Written,
        Locked, ///< by another program, for now
        Refused,
    };

    RecordStore();
    RecordStore(const RecordStore &) = delete;
    RecordStore &operator=(const RecordStore &) = delete;
    ~RecordStore();

    std::vector<Record> all();

    /// The highest identifier that was ever used, or 0.
    KVR_ID highestId();

    /// Writes all changes or none of them.
    Outcome write(const Changes &changes);

    /// Whether so much has been written that shortenLog() is due.
    bool hasLongLog() const { return m_logLength > longLog; }

    /// Brings what has been written into the database, for which the disk is waited for. On any thread; the store may
    /// go on writing meanwhile.
    static void shortenLog();

private:
    struct Closer
    {
        void operator()(sqlite3 *database) const;
        void operator()(sqlite3_stmt *statement) const;
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Closer>;

    bool open();
    bool execute(const char *text);
    Statement prepared(const char *text);
    int run(const Statement &statement);
    int put(const Record &record);
    int remove(KVR_ID id);
    void tellProblem();

    std::unique_ptr<sqlite3, Closer> m_database; ///< null when there can be none
    Statement m_begin;
    Statement m_put;
    Statement m_remove;
    Statement m_commit;
    std::string m_problem;                   ///< of the latest write
    static constexpr int longLog = 1000;     ///< pages, of 4 KB
    static constexpr int longestLog = 16000; ///< where writes wait until it is shorter, after all
    int m_logLength = 0;
};

} // namespace Desk
