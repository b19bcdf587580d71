// Copyright The Kavro STB browser authors
// SPDX-License-Identifier: Apache-2.0

#include "MagnetDownload.h"
#include "BoxPaths.h"
#include "DiskRoom.h"
#include "Log.h"
#include "LooseThreads.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <libtorrent/alert_types.hpp>
#include <libtorrent/download_priority.hpp>
#include <libtorrent/magnet_uri.hpp>
#include <libtorrent/session_params.hpp>
#include <libtorrent/session_stats.hpp>
#include <libtorrent/settings_pack.hpp>
#include <libtorrent/torrent_info.hpp>
#include <libtorrent/torrent_status.hpp>
#include <system_error>
#include <utility>

using namespace Desk;
namespace lt = libtorrent;

namespace {

constexpr std::int64_t largestFile = 32LL << 30;

constexpr int piecesAhead = 8;
constexpr std::chrono::milliseconds updateInterval{250};

// The folder of a download. What a killed process has left behind goes before the first one.
std::string newFolder()
{
    static std::once_flag cleared;
    std::call_once(cleared, [] {
        std::error_code ignored;
        std::filesystem::remove_all(BoxPaths::torrents, ignored);
    });
    static std::atomic<int> count{0};
    return std::string(BoxPaths::torrents) + "/" + std::to_string(count++);
}

lt::session_params sessionParameters()
{
    lt::settings_pack settings;
    settings.set_int(lt::settings_pack::alert_mask,
                     lt::alert_category::status | lt::alert_category::error | lt::alert_category::piece_progress);
    settings.set_str(lt::settings_pack::listen_interfaces, "0.0.0.0:0,[::]:0");
    // A portal under development must not reconfigure the router of its developer.
    settings.set_bool(lt::settings_pack::enable_upnp, false);
    settings.set_bool(lt::settings_pack::enable_natpmp, false);
    // While the file is not chosen, nothing is wanted of the peers that gave the list of files; they must stay.
    settings.set_bool(lt::settings_pack::close_redundant_connections, false);
    settings.set_int(lt::settings_pack::stop_tracker_timeout, 1);
    // What is wanted after a seek waits for what was asked for before it: no more than a second's worth.
    settings.set_int(lt::settings_pack::request_queue_time, 1);
    return lt::session_params(settings);
}

} // namespace

std::shared_ptr<MagnetDownload> MagnetDownload::begin(const std::string &magnet, const std::string &wanted)
{
    const auto gone = std::make_shared<std::promise<void>>();
    const auto end = [gone](MagnetDownload *download) {
        delete download;
        gone->set_value();
    };
    const auto endLoosely = [end](MagnetDownload *download) {
        try {
            LooseThreads::run([end, download] { end(download); });
        } catch (const std::system_error &) {
            end(download);
        }
    };
    std::shared_ptr<MagnetDownload> download(new MagnetDownload(magnet, wanted), endLoosely);
    download->m_gone = gone->get_future();
    return download;
}

MagnetDownload::MagnetDownload(const std::string &magnet, const std::string &wanted)
    : m_wanted(wanted)
    , m_folder(newFolder())
{
    lt::error_code error;
    lt::add_torrent_params parameters = lt::parse_magnet_uri(magnet, error);
    if (error) {
        m_problem = "not a magnet link: " + error.message();
        return;
    }
    std::error_code folderError;
    std::filesystem::create_directories(m_folder, folderError);
    if (folderError) {
        m_problem = "cannot create " + m_folder + ": " + folderError.message();
        return;
    }
    parameters.save_path = m_folder;
    parameters.storage_mode = lt::storage_mode_sparse;
    // Until the file is chosen, nothing but the list of files is wanted.
    parameters.flags |= lt::torrent_flags::default_dont_download;
    parameters.flags &= ~lt::torrent_flags::auto_managed;
    parameters.flags &= ~lt::torrent_flags::paused;

    m_session = std::make_unique<lt::session>(sessionParameters());
    m_torrent = m_session->add_torrent(parameters, error);
    if (error)
        m_problem = error.message();
    else
        m_thread = std::thread([this] { run(); });
}

MagnetDownload::~MagnetDownload()
{
    m_stopping = true;
    if (m_thread.joinable())
        m_thread.join();
    m_session.reset();
    std::error_code error;
    std::filesystem::remove_all(m_folder, error);
    if (error)
        log("cannot remove " + m_folder + ": " + error.message());
}

Problem MagnetDownload::problem() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_problem;
}

bool MagnetDownload::takeReady()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_ready && !std::exchange(m_readyTaken, true);
}

bool MagnetDownload::takeProgress()
{
    const std::int64_t received = m_received;
    return std::exchange(m_receivedBefore, received) != received;
}

std::int64_t MagnetDownload::size() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_fileSize;
}

void MagnetDownload::run()
{
    auto nextUpdate = std::chrono::steady_clock::now();
    while (!m_stopping) {
        if (m_session->wait_for_alert(updateInterval)) {
            std::vector<lt::alert *> alerts;
            m_session->pop_alerts(&alerts);
            for (lt::alert *alert : alerts)
                handle(alert);
        }
        // An update is an alert too: asked for at each turn, it would keep the session busy with nothing else.
        if (std::chrono::steady_clock::now() >= nextUpdate) {
            m_session->post_torrent_updates();
            nextUpdate = std::chrono::steady_clock::now() + updateInterval;
        }
    }
}

void MagnetDownload::handle(lt::alert *alert)
{
    if (lt::alert_cast<lt::metadata_received_alert>(alert)) {
        chooseFile(m_torrent.torrent_file());
    } else if (const auto *added = lt::alert_cast<lt::add_torrent_alert>(alert)) {
        if (added->error)
            fail(added->error.message());
    } else if (const auto *update = lt::alert_cast<lt::state_update_alert>(alert)) {
        for (const lt::torrent_status &status : update->status)
            m_received = status.total_payload_download; // peers that only talk are no help
    } else if (const auto *piece = lt::alert_cast<lt::read_piece_alert>(alert)) {
        if (piece->error == boost::system::errc::operation_canceled)
            return; // by a request of another
        if (piece->error) {
            fail("piece " + std::to_string(static_cast<int>(piece->piece)) + ": " + piece->error.message());
            return;
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (static_cast<int>(piece->piece) != m_requestedPiece)
            return;
        m_piece = m_requestedPiece;
        m_data.assign(piece->buffer.get(), piece->buffer.get() + piece->size);
        m_arrived.notify_all();
    } else if (const auto *storage = lt::alert_cast<lt::file_error_alert>(alert)) {
        fail(std::string(storage->filename()) + ": " + storage->error.message());
    } else if (const auto *failed = lt::alert_cast<lt::torrent_error_alert>(alert)) {
        fail(failed->error.message());
    } else if (const auto *metadata = lt::alert_cast<lt::metadata_failed_alert>(alert)) {
        fail(metadata->error.message());
    }
}

void MagnetDownload::chooseFile(const std::shared_ptr<const lt::torrent_info> &info)
{
    const lt::file_storage &files = info->files();
    lt::file_index_t chosen{-1};
    for (const lt::file_index_t file : files.file_range()) {
        const bool named = files.file_path(file) == m_wanted || files.file_name(file) == m_wanted;
        const bool larger = chosen < lt::file_index_t{0} || files.file_size(file) > files.file_size(chosen);
        if (m_wanted.empty() ? larger : named)
            chosen = file;
    }
    if (chosen < lt::file_index_t{0})
        return fail("the torrent has no file " + m_wanted);

    const std::int64_t size = files.file_size(chosen);
    if (const Problem tooLarge = problemOfSize(size, largestFile, m_folder))
        return fail(*tooLarge);

    std::vector<lt::download_priority_t> priorities(static_cast<std::size_t>(files.num_files()), lt::dont_download);
    priorities[static_cast<std::size_t>(static_cast<int>(chosen))] = lt::default_priority;
    m_torrent.prioritize_files(priorities);
    m_torrent.set_flags(lt::torrent_flags::sequential_download);

    const std::lock_guard<std::mutex> lock(m_mutex);
    m_fileOffset = files.file_offset(chosen);
    m_fileSize = size;
    m_pieceLength = info->piece_length();
    m_lastPiece = static_cast<int>((m_fileOffset + std::max<std::int64_t>(size, 1) - 1) / m_pieceLength);
    m_ready = true;
}

void MagnetDownload::fail(const std::string &reason)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_problem)
        m_problem = reason;
    m_arrived.notify_all();
}

void MagnetDownload::request(int piece)
{
    if (piece != m_requestedPiece + 1)
        m_torrent.clear_piece_deadlines();
    m_requestedPiece = piece;
    m_torrent.set_piece_deadline(lt::piece_index_t{piece}, 0, lt::torrent_handle::alert_when_available);
    for (int ahead = 1; ahead <= piecesAhead && piece + ahead <= m_lastPiece; ++ahead)
        m_torrent.set_piece_deadline(lt::piece_index_t{piece + ahead}, 1000 * ahead);
}

std::int64_t MagnetDownload::read(std::int64_t position, char *buffer, std::int64_t size,
                                  const std::atomic<bool> &cancelled)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    if (position >= m_fileSize)
        return 0;
    const std::int64_t inTorrent = m_fileOffset + position;
    const int piece = static_cast<int>(inTorrent / m_pieceLength);
    if (piece != m_piece && piece != m_requestedPiece)
        request(piece);
    m_arrived.wait(lock, [&] { return m_piece == piece || m_problem || cancelled; });
    if (m_piece != piece)
        return -1;

    const std::int64_t inPiece = inTorrent % m_pieceLength;
    const std::int64_t rest = static_cast<std::int64_t>(m_data.size()) - inPiece;
    const std::int64_t count = std::min({size, rest, m_fileSize - position});
    if (count <= 0)
        return -1;
    std::copy_n(m_data.begin() + inPiece, count, buffer);
    return count;
}

void MagnetDownload::wakeReaders()
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_arrived.notify_all();
}
