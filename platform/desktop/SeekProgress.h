// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

namespace Desk {

/// How far a player core is with the seek that was ordered of it last. It takes the order, begins the seek and restarts
/// where that leads, in this turn; until then, the positions that it tells are those of the time before. A restart that
/// comes out of turn is that of an earlier seek, which the core finishes first.
class SeekProgress
{
public:
    bool isUnderWay() const { return m_stage != Stage::Over; }

    /// A new seek is ordered; those before it do not count any more. Its number.
    unsigned order()
    {
        m_stage = Stage::Ordered;
        return ++m_number;
    }

    void taken(unsigned number)
    {
        if (number == m_number && m_stage == Stage::Ordered)
            m_stage = Stage::Taken;
    }

    void begun()
    {
        if (m_stage == Stage::Taken)
            m_stage = Stage::Begun;
    }

    void restarted()
    {
        if (m_stage == Stage::Begun)
            m_stage = Stage::Over;
    }

    void refused(unsigned number)
    {
        if (number == m_number)
            m_stage = Stage::Over;
    }

    /// What was to be sought in is no more.
    void forget() { m_stage = Stage::Over; }

private:
    enum class Stage { Ordered, Taken, Begun, Over };

    Stage m_stage = Stage::Over;
    unsigned m_number = 0;
};

} // namespace Desk
