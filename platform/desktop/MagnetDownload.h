// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "Problem.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <future>
#include <libtorrent/add_torrent_params.hpp>
#include <libtorrent/session.hpp>
#include <libtorrent/torrent_handle.hpp>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace libtorrent {
class torrent_info;
}

namespace Desk {

/// Downloads one file of a torrent in the order in which it is read, into a folder of the box that goes with it.
class MagnetDownload
{
public:
    /// wanted: the file inside the torrent, or empty for the largest. Whoever lets go last does not wait for its end.
    static std::shared_ptr<MagnetDownload> begin(const std::string &magnet, const std::string &wanted);
    MagnetDownload(const MagnetDownload &) = delete;
    MagnetDownload &operator=(const MagnetDownload &) = delete;

    /// Leaves the swarm and removes the files. Takes up to some seconds, and as long as the look-up of a tracker's
    /// name.
    ~MagnetDownload();

    /// Ready once it has gone, with its files.
    std::shared_future<void> gone() const { return m_gone; }

    /// Why the download cannot go on.
    Problem problem() const;

    /// Whether the file is known and can be read: true once.
    bool takeReady();

    /// Whether something has come in since the last call.
    bool takeProgress();

    /// The size of the file in bytes. Known when ready.
    std::int64_t size() const;

    /// Waits for the data at position and copies up to size bytes of it. 0 at the end of the file, -1 when the download
    /// has failed or cancelled is set; see wakeReaders().
    std::int64_t read(std::int64_t position, char *buffer, std::int64_t size, const std::atomic<bool> &cancelled);
    void wakeReaders();

private:
    MagnetDownload(const std::string &magnet, const std::string &wanted);

    void run();
    void handle(libtorrent::alert *alert);
    void chooseFile(const std::shared_ptr<const libtorrent::torrent_info> &info);
    void fail(const std::string &reason);
    void request(int piece);

    const std::string m_wanted;
    const std::string m_folder;
    std::shared_future<void> m_gone;
    std::unique_ptr<libtorrent::session> m_session;
    libtorrent::torrent_handle m_torrent;

    mutable std::mutex m_mutex;
    std::condition_variable m_arrived;
    Problem m_problem;
    bool m_ready = false;
    bool m_readyTaken = false;
    std::int64_t m_fileOffset = 0; // of the file in the torrent
    std::int64_t m_fileSize = 0;
    int m_pieceLength = 0;
    int m_lastPiece = 0; // of the file
    int m_piece = -1;    // the one at hand
    int m_requestedPiece = -1;
    std::vector<char> m_data;

    std::atomic<std::int64_t> m_received{0};
    std::int64_t m_receivedBefore = 0;
    std::atomic<bool> m_stopping{false};
    std::thread m_thread;
};

} // namespace Desk
