// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <QVariant>

namespace KavroJS {
class StbPVR;
} // namespace KavroJS

/// Gives the guard of StbPVR the list of recordings with numbers for dates. The dates that the engine itself brings to
/// a page are an hour late in the first of the two equal hours at the end of summer time, which it takes for the
/// second.
class RecordTimes : public QObject
{
    Q_OBJECT

public:
    RecordTimes(KavroJS::StbPVR *pvr, QObject *parent);

public slots:
    /// The object's own answer, with each "start" in milliseconds since 1970-01-01 00:00 UTC.
    QVariantList GetRecordsList();

private:
    KavroJS::StbPVR *pvr;
};
