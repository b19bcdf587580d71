// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "BoxIdentity.h"
#include "BoxPaths.h"
#include "DurableFile.h"
#include "LooseThreads.h"

#include <random>

using namespace Desk;

std::string BoxIdentity::model() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_model;
}

void BoxIdentity::setModel(const std::string &model)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_model = model;
}

std::string BoxIdentity::firmwareVersion()
{
    return KAVRO_VERSION;
}

std::string BoxIdentity::serialNumber()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_serialNumber)
        return *m_serialNumber;

    const std::string kept = readFile(BoxPaths::serialNumber);
    m_serialNumber = kept.substr(0, kept.find('\n'));
    if (m_serialNumber->empty()) {
        std::random_device random;
        std::uniform_int_distribution<int> number(0, 99999999);
        const std::string digits = std::to_string(number(random));
        const std::string made = "DESK" + std::string(8 - digits.size(), '0') + digits;
        // A page is told the same after a kill; for the disk it does not wait.
        if (replaceFile(BoxPaths::serialNumber, made + '\n')) {
            m_serialNumber = made;
            LooseThreads::run([] { makeDurable(BoxPaths::serialNumber); });
        }
    }
    return *m_serialNumber;
}
