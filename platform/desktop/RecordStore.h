// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Record.h"

#include <QSqlDatabase>
#include <string>
#include <vector>

class QSqlQuery;

namespace Desk {

/// The recording schedule in a database of the box's files. What a function has done outlives a kill of the process.
/// Everything happens on the thread that made the store; failures are logged.
class RecordStore
{
public:
    RecordStore();
    RecordStore(const RecordStore &) = delete;
    RecordStore &operator=(const RecordStore &) = delete;
    ~RecordStore();

    bool isOpen() const { return m_database.isOpen(); }
    std::vector<Record> all();

    /// The identifier given to the record, never one that was in use before; negative on failure.
    KVR_ID add(const Record &record);
    bool update(const Record &record);
    bool remove(KVR_ID id);

private:
    QSqlQuery prepared(const QString &statement) const;
    bool execute(const char *statement);
    bool execute(QSqlQuery &query);
    bool hasSucceeded(const QSqlQuery &query, bool success);

    QSqlDatabase m_database;
    std::string m_problem; ///< of the latest statement
};

} // namespace Desk
