// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "RecordStore.h"
#include "BoxPaths.h"
#include "DurableFile.h"
#include "Log.h"

#include "common/other/regularfile.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <fcntl.h>
#include <unistd.h>

using namespace Desk;

namespace {

// Some hundred bytes a recording: nobody has scheduled as many as this.
constexpr long long largestSchedule = 64LL << 20;

QString connectionName()
{
    return QStringLiteral("kavro-records");
}

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

std::string problemOf(const QSqlError &error)
{
    return "recording schedule " + std::string(BoxPaths::records) + ": " + error.text().toStdString();
}

// The columns of a record behind its identifier, in the order of the table.
void bindColumns(QSqlQuery &query, const Record &record)
{
    query.addBindValue(QString::fromStdString(record.url));
    query.addBindValue(QString::fromStdString(record.file));
    query.addBindValue(record.start);
    query.addBindValue(static_cast<qlonglong>(record.begin));
    query.addBindValue(record.duration);
    query.addBindValue(static_cast<int>(record.state));
    query.addBindValue(record.ownsFile);
}

Record recordOf(const QSqlQuery &query)
{
    Record record;
    record.id = query.value(0).toInt();
    record.url = query.value(1).toString().toStdString();
    record.file = query.value(2).toString().toStdString();
    record.start = query.value(3).toUInt();
    record.begin = query.value(4).toLongLong();
    record.duration = query.value(5).toInt();
    record.state = static_cast<KVR_RecordState>(query.value(6).toInt());
    record.ownsFile = query.value(7).toBool();
    return record;
}

} // namespace

RecordStore::RecordStore()
    : m_database(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connectionName()))
{
    if (!m_database.isValid() || !makeFolderOf(BoxPaths::records)) {
        log("no recording schedule: the SQLite driver of Qt (libqt5sql5-sqlite) or the folder is missing");
        return;
    }
    if (!isUsable())
        return;
    m_database.setDatabaseName(QString::fromUtf8(BoxPaths::records));
    if (!m_database.open()) {
        log(problemOf(m_database.lastError()));
        return;
    }
    // With a write-ahead log a commit waits for no disk, and still outlives the process.
    const bool ready = execute("PRAGMA journal_mode=WAL") && execute("PRAGMA synchronous=NORMAL")
        && execute("CREATE TABLE IF NOT EXISTS records (id INTEGER PRIMARY KEY AUTOINCREMENT, url TEXT, file TEXT, "
                   "start INTEGER, begin INTEGER, duration INTEGER, state INTEGER, owns_file INTEGER)");
    if (!ready)
        m_database.close();
}

RecordStore::~RecordStore()
{
    m_database.close();
    m_database = QSqlDatabase();
    QSqlDatabase::removeDatabase(connectionName());
}

// Without a database there is nothing to prepare, which the toolkit would log.
QSqlQuery RecordStore::prepared(const QString &statement) const
{
    QSqlQuery query(m_database);
    if (isOpen())
        query.prepare(statement);
    return query;
}

bool RecordStore::execute(const char *statement)
{
    QSqlQuery query(m_database);
    return hasSucceeded(query, query.exec(QString::fromLatin1(statement)));
}

bool RecordStore::execute(QSqlQuery &query)
{
    return isOpen() && hasSucceeded(query, query.exec());
}

// A problem that lasts, such as a full disk, is logged once.
bool RecordStore::hasSucceeded(const QSqlQuery &query, bool success)
{
    const std::string problem = success ? std::string() : problemOf(query.lastError());
    if (!success && problem != m_problem)
        log(problem);
    m_problem = problem;
    return success;
}

std::vector<Record> RecordStore::all()
{
    std::vector<Record> records;
    QSqlQuery query = prepared(
        QStringLiteral("SELECT id, url, file, start, begin, duration, state, owns_file FROM records ORDER BY id"));
    execute(query);
    while (query.next())
        records.push_back(recordOf(query));
    return records;
}

KVR_ID RecordStore::add(const Record &record)
{
    QSqlQuery query =
        prepared(QStringLiteral("INSERT INTO records (url, file, start, begin, duration, state, owns_file) "
                                "VALUES (?, ?, ?, ?, ?, ?, ?)"));
    bindColumns(query, record);
    return execute(query) ? query.lastInsertId().toInt() : KVR_ERR_FAILED;
}

bool RecordStore::update(const Record &record)
{
    QSqlQuery query =
        prepared(QStringLiteral("UPDATE records SET url = ?, file = ?, start = ?, begin = ?, duration = ?, state = ?, "
                                "owns_file = ? WHERE id = ?"));
    bindColumns(query, record);
    query.addBindValue(record.id);
    return execute(query);
}

bool RecordStore::remove(KVR_ID id)
{
    QSqlQuery query = prepared(QStringLiteral("DELETE FROM records WHERE id = ?"));
    query.addBindValue(id);
    return execute(query);
}
