// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordStore.h"
#include "BoxPaths.h"
#include "DurableFile.h"
#include "Log.h"

#include "common/other/regularfile.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

using namespace Desk;

namespace {

// Some hundred bytes a recording: nobody has scheduled as many as this.
constexpr long long largestSchedule = 64LL << 20;

constexpr int patience = 5000; // milliseconds, with another program that has the database locked

// Whether what is in the place of the schedule, if anything, can be one.
bool isUsable()
{
    std::string oddity;
    const int file = Common::openRegular(BoxPaths::records, O_RDWR, largestSchedule, &oddity);
    if (file >= 0)
        ::close(file);
    if (!oddity.empty())
        log("no recording schedule: " + oddity);
    return oddity.empty();
}

// The text stays where it is until the statement has run.
void bind(sqlite3_stmt *statement, int number, const std::string &text)
{
    sqlite3_bind_text(statement, number, text.data(), static_cast<int>(text.size()), nullptr);
}

std::string textOf(sqlite3_stmt *statement, int column)
{
    const auto *text = static_cast<const char *>(sqlite3_column_blob(statement, column));
    return text ? std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, column))) : std::string();
}

Record recordOf(sqlite3_stmt *row)
{
    Record record;
    record.id = sqlite3_column_int(row, 0);
    record.url = textOf(row, 1);
    record.file = textOf(row, 2);
    record.start = static_cast<std::uint32_t>(sqlite3_column_int64(row, 3));
    record.begin = sqlite3_column_int64(row, 4);
    record.duration = sqlite3_column_int(row, 5);
    record.state = static_cast<KVR_RecordState>(sqlite3_column_int(row, 6));
    record.ownsFile = sqlite3_column_int(row, 7) != 0;
    return record;
}

} // namespace

void RecordStore::Closer::operator()(sqlite3 *database) const
{
    sqlite3_close(database);
}

void RecordStore::Closer::operator()(sqlite3_stmt *statement) const
{
    sqlite3_finalize(statement);
}

RecordStore::RecordStore()
{
    if (makeFolderOf(BoxPaths::records) && isUsable() && !open()) {
        tellProblem();
        m_database.reset();
    }
}

RecordStore::~RecordStore() = default;

bool RecordStore::open()
{
    sqlite3 *database = nullptr;
    const int result = sqlite3_open(BoxPaths::records, &database);
    m_database.reset(database);
    if (result != SQLITE_OK)
        return false;
    sqlite3_busy_timeout(database, patience);
    // With a write-ahead log a commit waits for no disk, and still outlives the process.
    if (!execute("PRAGMA journal_mode=WAL") || !execute("PRAGMA synchronous=NORMAL")
        || !execute("CREATE TABLE IF NOT EXISTS records (id INTEGER PRIMARY KEY AUTOINCREMENT, url TEXT, file TEXT, "
                    "start INTEGER, begin INTEGER, duration INTEGER, state INTEGER, owns_file INTEGER)"))
        return false;
    // In place of the library's own, which makes a write wait for the disk whenever the log has grown long.
    const auto notice = [](void *self, sqlite3 *, const char *, int pages) {
        static_cast<RecordStore *>(self)->m_logLength = pages;
        return SQLITE_OK;
    };
    sqlite3_wal_hook(database, notice, this);
    m_begin = prepared("BEGIN IMMEDIATE");
    m_put = prepared("INSERT OR REPLACE INTO records (id, url, file, start, begin, duration, state, owns_file) "
                     "VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
    m_remove = prepared("DELETE FROM records WHERE id = ?");
    m_commit = prepared("COMMIT");
    return m_begin && m_put && m_remove && m_commit;
}

bool RecordStore::execute(const char *text)
{
    return sqlite3_exec(m_database.get(), text, nullptr, nullptr, nullptr) == SQLITE_OK;
}

RecordStore::Statement RecordStore::prepared(const char *text)
{
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(m_database.get(), text, -1, &statement, nullptr);
    return Statement(statement);
}

// A problem that lasts, such as a full disk, is logged once.
void RecordStore::tellProblem()
{
    const std::string problem =
        "recording schedule " + std::string(BoxPaths::records) + ": " + sqlite3_errmsg(m_database.get());
    if (problem != m_problem)
        log(problem);
    m_problem = problem;
}

std::vector<Record> RecordStore::all()
{
    std::vector<Record> records;
    if (!m_database)
        return records;
    const Statement query =
        prepared("SELECT id, url, file, start, begin, duration, state, owns_file FROM records ORDER BY id");
    int result = SQLITE_ERROR;
    while (query && (result = sqlite3_step(query.get())) == SQLITE_ROW)
        records.push_back(recordOf(query.get()));
    if (result != SQLITE_DONE)
        tellProblem();
    return records;
}

KVR_ID RecordStore::highestId()
{
    if (!m_database)
        return 0;
    const Statement query = prepared("SELECT seq FROM sqlite_sequence WHERE name = 'records'");
    return query && sqlite3_step(query.get()) == SQLITE_ROW ? sqlite3_column_int(query.get(), 0) : 0;
}

int RecordStore::run(const Statement &statement)
{
    const int result = sqlite3_step(statement.get());
    sqlite3_reset(statement.get());
    return result;
}

int RecordStore::put(const Record &record)
{
    sqlite3_stmt *statement = m_put.get();
    sqlite3_bind_int(statement, 1, record.id);
    bind(statement, 2, record.url);
    bind(statement, 3, record.file);
    sqlite3_bind_int64(statement, 4, record.start);
    sqlite3_bind_int64(statement, 5, record.begin);
    sqlite3_bind_int(statement, 6, record.duration);
    sqlite3_bind_int(statement, 7, record.state);
    sqlite3_bind_int(statement, 8, record.ownsFile ? 1 : 0);
    return run(m_put);
}

int RecordStore::remove(KVR_ID id)
{
    sqlite3_bind_int(m_remove.get(), 1, id);
    return run(m_remove);
}

RecordStore::Outcome RecordStore::write(const Changes &changes)
{
    if (!m_database)
        return Outcome::Refused;
    int result = run(m_begin);
    for (auto change = changes.begin(); result == SQLITE_DONE && change != changes.end(); ++change)
        result = change->second ? put(*change->second) : remove(change->first);
    if (result == SQLITE_DONE)
        result = run(m_commit);
    if (result == SQLITE_DONE) {
        m_problem.clear();
        if (m_logLength > longestLog)
            shortenLog();
        return Outcome::Written;
    }
    tellProblem();
    if (!sqlite3_get_autocommit(m_database.get()))
        execute("ROLLBACK");
    return result == SQLITE_BUSY ? Outcome::Locked : Outcome::Refused;
}

void RecordStore::shortenLog()
{
    sqlite3 *database = nullptr;
    const int result = sqlite3_open_v2(BoxPaths::records, &database, SQLITE_OPEN_READWRITE, nullptr);
    const std::unique_ptr<sqlite3, Closer> owner(database);
    // A database that has not been read from has no log yet.
    if (result == SQLITE_OK && sqlite3_exec(database, "PRAGMA schema_version", nullptr, nullptr, nullptr) == SQLITE_OK)
        sqlite3_wal_checkpoint_v2(database, nullptr, SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
}
