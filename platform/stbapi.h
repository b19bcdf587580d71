/* Copyright The Kavro STB browser authors
 * SPDX-License-Identifier: Apache-2.0 */

/*
 * stbapi.h: the contract of a set-top box's platform library, libstbapi.so.
 *
 * The browser plugin talks to the box through these functions and through files, and in no other way. Whoever
 * provides a library with this interface provides a box: the maker of a real one, the desk box for a PC, or a test.
 *
 * Life cycle. The library needs no set-up call: it is ready when it is loaded. Players and recordings are named by a
 * KVR_ID. A player lives from KVR_CreatePlayer to KVR_ClosePlayer. Recordings live in the library's own storage and
 * outlive the process.
 *
 * Results. Unless a function says otherwise it returns an int: zero or positive is success, negative is a failure
 * (enum KVR_Error). KVR_ERR_INVALID_ID is returned by every function whose first argument names a player or a
 * recording that does not exist. A function that fails leaves what its out-pointers point to unchanged unless it says
 * otherwise. No function keeps a pointer that it was given beyond the call.
 *
 * Threads. Every function may be called from any thread and may be called from within an event handler. No function
 * waits for a network, a disk or a stream: what takes time goes on in the background and is reported by an event.
 * KVR_SyncBootParams alone may wait for the disk.
 *
 * Texts. Texts going in are NUL-terminated UTF-8. Texts coming out are NUL-terminated 8-bit texts that the caller
 * reads as Latin-1.
 *
 * Memory. An array or text that a function hands out through an out-pointer comes from malloc; the caller releases it
 * with free. The exceptions say so.
 *
 * Units. Positions and durations of playback are milliseconds, durations of recordings seconds, volumes 0 to 100,
 * alpha levels 0 (transparent) to 255 (opaque). Screen coordinates are pixels of the current resolution, see
 * KVR_SetResolution. Yes/no answers and arguments are 1 and 0; a non-zero argument means yes.
 */

#ifndef KVR_STBAPI_H
#define KVR_STBAPI_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Types ---- */

/* Names a player or a recording; never negative for an existing one. */
typedef int32_t KVR_ID;

/* The pseudo-identifier of the whole box, for events that belong to no player. */
#define KVR_BOX ((KVR_ID)-128)

/* Result codes. Other negative values are failures too. */
enum KVR_Error {
    KVR_OK = 0,
    KVR_ERR_FAILED = -1,           /* the operation failed; the library's log says why */
    KVR_ERR_NOT_SUPPORTED = -2,    /* this box cannot do it */
    KVR_ERR_INVALID_ARGUMENT = -3, /* a value outside its range, or a null pointer */
    KVR_ERR_INVALID_STATE = -4,    /* not possible now, for example a seek with nothing loaded */
    KVR_ERR_INVALID_ID = -127      /* no player or recording of this identifier */
};

/* A rectangle in pixels, its origin at the top left. */
typedef struct KVR_Rect
{
    int32_t x;
    int32_t y;
    int32_t width;
    int32_t height;
} KVR_Rect;

/* A colour, each component 0 to 255. Passed by value. */
typedef struct KVR_Color
{
    uint8_t red;
    uint8_t green;
    uint8_t blue;
    uint8_t alpha;
} KVR_Color;

/* A track of what a player plays. */
typedef struct KVR_Track
{
    int32_t id;        /* the PID that the Set...Pid functions take */
    char descr[128];   /* language and codec, or what else the stream tells; always NUL-terminated */
    int32_t supported; /* non-zero when this box can decode the track */
    int32_t encoding;  /* enum KVR_SubtitleEncoding; meaningful for subtitle tracks only */
} KVR_Track;

/* How a subtitle track is encoded. */
enum KVR_SubtitleEncoding {
    KVR_SUBTITLE_TEXT = 0,  /* text, whatever its format */
    KVR_SUBTITLE_BITMAP = 1 /* pictures, such as DVB subtitles */
};

/* The latest multicast join or leave of a player. */
typedef struct KVR_MulticastEvent
{
    char ip_port[32]; /* "group:port", always NUL-terminated; empty when there was none yet */
    int32_t join;     /* non-zero for a join, zero for a leave */
} KVR_MulticastEvent;

/* A scheduled, running or finished recording. */
typedef struct KVR_Record
{
    KVR_ID id;
    int32_t reserved;
    char addr[128];   /* address of the source; always NUL-terminated, cut off when longer */
    int32_t duration; /* seconds */
    char file[256];   /* file name as given to KVR_AddRecord; always NUL-terminated, cut off when longer */
    uint32_t start;   /* seconds since 1970-01-01 00:00 UTC */
    int32_t state;    /* enum KVR_RecordState */
} KVR_Record;

#ifdef __cplusplus
static_assert(sizeof(KVR_Rect) == 16, "KVR_Rect is four 32-bit integers");
static_assert(offsetof(KVR_Rect, y) == 4 && offsetof(KVR_Rect, width) == 8 && offsetof(KVR_Rect, height) == 12,
              "KVR_Rect is x, y, width, height");
static_assert(sizeof(KVR_Color) == 4, "KVR_Color is one 32-bit word");
static_assert(offsetof(KVR_Color, green) == 1 && offsetof(KVR_Color, blue) == 2 && offsetof(KVR_Color, alpha) == 3,
              "KVR_Color is red, green, blue, alpha");
static_assert(sizeof(KVR_Track) == 140, "KVR_Track is 140 bytes");
static_assert(offsetof(KVR_Track, descr) == 4 && offsetof(KVR_Track, supported) == 132
                  && offsetof(KVR_Track, encoding) == 136,
              "KVR_Track is id, descr, supported, encoding");
static_assert(sizeof(KVR_MulticastEvent) == 36, "KVR_MulticastEvent is 36 bytes");
static_assert(offsetof(KVR_MulticastEvent, join) == 32, "KVR_MulticastEvent is ip_port, join");
static_assert(sizeof(KVR_Record) == 404, "KVR_Record is 404 bytes");
static_assert(offsetof(KVR_Record, addr) == 8 && offsetof(KVR_Record, duration) == 136
                  && offsetof(KVR_Record, file) == 140 && offsetof(KVR_Record, start) == 396
                  && offsetof(KVR_Record, state) == 400,
              "KVR_Record is id, reserved, addr, duration, file, start, state");
#endif

/* ---- Events ---- */

/*
 * Receives an event. The argument is the player's identifier for the events of a player; the table below gives it for
 * the events of the box. Called on threads of the library, on several at once if need be, and never from inside a
 * call of the caller's. It returns soon and does not throw. Its result is ignored.
 */
typedef int (*KVR_EventHandler)(int argument);

enum KVR_EventType {
    /* of a player; the argument is its identifier */
    KVR_EVENT_STATE = 1,          /* KVR_GetPlayerState has changed */
    KVR_EVENT_METADATA = 2,       /* the stream's duration and tracks are known, or have changed; of a duration that
                                     grows it tells twice a second at most */
    KVR_EVENT_POSITION = 3,       /* sent twice a second while playing, and after a seek */
    KVR_EVENT_AUDIO = 4,          /* the audio tracks or the chosen one changed */
    KVR_EVENT_VIDEO = 5,          /* the video track or the size of its picture changed */
    KVR_EVENT_SUBTITLES = 6,      /* the subtitle tracks, the chosen one or their visibility changed */
    KVR_EVENT_VOLUME = 7,         /* the volume changed */
    KVR_EVENT_ZOOM = 8,           /* the zoom changed */
    KVR_EVENT_MUTE = 9,           /* muted or no longer muted */
    KVR_EVENT_MULTICAST = 11,     /* a multicast group was joined or left */
    KVR_EVENT_TELETEXT_PID = 14,  /* the teletext tracks or the chosen one changed */
    KVR_EVENT_TELETEXT_PAGE = 15, /* the teletext page or its visibility changed */
    /* of the box, registered for KVR_BOX */
    KVR_EVENT_OUTPUT_PORTS = 129, /* outputs were switched; the argument is KVR_IsOutportsEnabled */
    KVR_EVENT_SYNC_DONE = 137,    /* KVR_SyncBootParams is done, the argument is KVR_BOX */
    KVR_EVENT_RECORDS = 139,      /* a recording changed, see KVR_SetRecordsSharedCallback */
    KVR_EVENT_OUTPUT_STATE = 143, /* the state of an output port changed; the argument is its number */
    KVR_EVENT_HDMI = 144          /* the HDMI state changed; the argument is KVR_GetHdmiState */
};

/*
 * Has the events of one type and one player, or of the box (KVR_BOX), delivered to handler. There is one handler for
 * each pair: a second registration replaces the first. Registrations for a player end with KVR_ClosePlayer.
 * KVR_ERR_INVALID_ARGUMENT for a null handler.
 */
int KVR_RegisterEventHandler(KVR_ID id, int type, KVR_EventHandler handler);

/* Ends a registration. A call of the handler that has begun may still be running. KVR_ERR_FAILED if there is none. */
int KVR_DeleteEventHandler(KVR_ID id, int type);

/* The handler registered for this pair, or NULL. */
KVR_EventHandler KVR_GetEventHandler(KVR_ID id, int type);

/* ---- Players ---- */

enum KVR_PlayerState {
    KVR_PLAYER_IDLE = 0,    /* created, or stopped: nothing is loaded */
    KVR_PLAYER_OPENING = 1, /* connecting or filling the buffer */
    KVR_PLAYER_PLAYING = 2,
    KVR_PLAYER_PAUSED = 3,
    KVR_PLAYER_ENDED = 4, /* the stream came to its end (or, playing backwards, to its beginning) */
    KVR_PLAYER_ERROR = 5  /* cannot be opened or played; the library's log says why */
};

/*
 * A new idle player, its window full screen, visible and opaque. Returns its identifier, or a negative code. How many
 * there can be at once is the box's.
 */
KVR_ID KVR_CreatePlayer(void);

/* Stops and removes a player. Its identifier is not given to another player soon. */
int KVR_ClosePlayer(KVR_ID id);

/* The number of existing players, of all users of the library. */
int KVR_GetPlayersCount(void);

/* An enum KVR_PlayerState. */
int KVR_GetPlayerState(KVR_ID id);

/*
 * The KVR_Play... functions start playback in the background, replacing what the player played: they return 0 as soon
 * as the request is accepted, and KVR_EVENT_STATE tells how it went on. videoPid, audioPid and subtitlePid choose the
 * tracks to begin with; -1 leaves the choice to the library. A position at the end or beyond it is the end:
 * KVR_PLAYER_ENDED. KVR_ERR_INVALID_ARGUMENT for an empty address, a path that does not begin with a slash, a negative
 * position or a mode that there is not.
 */

/*
 * Plays a file of the box. position: where to begin. duration and fps: what is known of the file, 0 when unknown; a
 * library that finds out by itself ignores them. subtitles: path of a subtitle file, or an empty text.
 */
int KVR_PlayFile(KVR_ID id, const char *path, long long position, long long duration, double fps, const char *subtitles,
                 int videoPid, int audioPid, int subtitlePid);

/* Plays a live stream: udp://group:port, rtp://group:port, or another address that the library knows. */
int KVR_PlayStream(KVR_ID id, const char *url, int videoPid, int audioPid, int subtitlePid);

/*
 * Plays a file or a playlist over HTTP or HTTPS. options: request headers, one "Name: value" a line (line feeds
 * between them), or an empty text.
 */
int KVR_PlayHttp(KVR_ID id, const char *url, const char *options, int videoPid, int audioPid, int subtitlePid);

/* Plays an RTSP stream from position. mode: 0 carries the media over UDP, 1 over TCP. */
int KVR_PlayRtsp(KVR_ID id, const char *url, long long position, int mode, int videoPid, int audioPid, int subtitlePid);

/*
 * Plays a file of a torrent while it is downloaded. magnet: the magnet link. name: the file inside the torrent; an
 * empty text takes the largest. size: its size in bytes, 0 when unknown. The others are as in KVR_PlayFile.
 */
int KVR_PlayMagnet(KVR_ID id, const char *magnet, const char *name, long long size, long long position,
                   long long duration, double fps, int videoPid, int audioPid, int subtitlePid);

/* Holds the picture. KVR_ERR_INVALID_STATE unless something plays. */
int KVR_Pause(KVR_ID id);

/* Ends playback; the player is idle afterwards. */
int KVR_Stop(KVR_ID id);

/* Goes on after KVR_Pause, at normal speed. */
int KVR_Continue(KVR_ID id);

/* Shows the next frame and stays paused. */
int KVR_NextFrame(KVR_ID id);

/*
 * Seeks to a position in milliseconds, beyond the end to the end. From then on KVR_GetPosition tells no position of the
 * time before. KVR_ERR_INVALID_STATE when nothing is loaded, KVR_ERR_NOT_SUPPORTED, and no change, in a stream in which
 * nobody can seek, KVR_ERR_INVALID_ARGUMENT for a negative position.
 */
int KVR_SetPosition(KVR_ID id, long long position);

/* The position in milliseconds, never beyond a duration that is known; 0 when nothing plays. */
long long KVR_GetPosition(KVR_ID id);

/*
 * The duration in milliseconds; 0 when it is not known, as for live streams. That of the file of a running recording
 * grows with it.
 */
long long KVR_GetDuration(KVR_ID id);

/*
 * 1 is normal, 2 twice as fast, negative speeds play backwards. KVR_ERR_INVALID_ARGUMENT for 0, above 100 and below
 * -100; KVR_ERR_NOT_SUPPORTED for a negative speed of a stream in which nobody can seek.
 */
int KVR_SetSpeed(KVR_ID id, int speed);

/* The speed; -127 can be a speed no less than an unknown player, as the page sees it. */
int KVR_GetSpeed(KVR_ID id);

/* ---- Tracks ---- */

/*
 * The KVR_Get...TrackList functions store a new array of tracks in *tracks and its length in *count. Nothing playing
 * is no failure: the array is then empty, and *tracks NULL or something that free takes.
 */
int KVR_GetVideoTrackList(KVR_ID id, KVR_Track **tracks, int *count);
int KVR_GetAudioTrackList(KVR_ID id, KVR_Track **tracks, int *count);
int KVR_GetSubtitleTrackList(KVR_ID id, KVR_Track **tracks, int *count);
int KVR_GetTeletextTrackList(KVR_ID id, KVR_Track **tracks, int *count);

/*
 * The PID of the chosen track, KVR_ERR_FAILED when none is chosen. The KVR_Set...Pid functions choose one; -1 chooses
 * none. A PID that the stream does not have gives KVR_ERR_INVALID_ARGUMENT.
 */
int KVR_GetVideoPid(KVR_ID id);
int KVR_GetAudioPid(KVR_ID id);
int KVR_SetAudioPid(KVR_ID id, int pid);
int KVR_GetSubtitlePid(KVR_ID id);
int KVR_SetSubtitlePid(KVR_ID id, int pid);
int KVR_GetTeletextPid(KVR_ID id);
int KVR_SetTeletextPid(KVR_ID id, int pid);

/* The teletext page, 100 to 899. KVR_ERR_INVALID_ARGUMENT for any other. */
int KVR_GetTeletextPage(KVR_ID id);
int KVR_SetTeletextPage(KVR_ID id, int page);

/* Whether subtitles and teletext are drawn over the picture. */
int KVR_IsSubtitlesVisible(KVR_ID id);
int KVR_SetSubtitlesVisible(KVR_ID id, int visible);
int KVR_IsTeletextVisible(KVR_ID id);
int KVR_SetTeletextVisible(KVR_ID id, int visible);

/* Stores the player's latest multicast join or leave in *event. */
int KVR_GetLastMulticastEvent(KVR_ID id, KVR_MulticastEvent *event);

/* ---- Sound, picture and player window ---- */

/* The player's volume, 0 to 100. A volume outside that range is brought to its nearer end. */
int KVR_SetVolume(KVR_ID id, int volume);
int KVR_GetVolume(KVR_ID id);
int KVR_SetMute(KVR_ID id, int mute);
int KVR_IsMute(KVR_ID id);

/*
 * The enlargement of the picture inside its window, in every display mode; 1.0 is unscaled. KVR_ERR_INVALID_ARGUMENT
 * unless 0.1 to 10.0.
 */
int KVR_SetZoom(KVR_ID id, double zoom);
double KVR_GetZoom(KVR_ID id);

/* Frames per second of the stream, 0.0 when not known. */
double KVR_GetFps(KVR_ID id);

/*
 * The rectangle of the screen, in pixels of the current resolution, that the player's picture fills. It may lie
 * anywhere. KVR_ERR_INVALID_ARGUMENT unless width and height are from 1 to twice those of the screen.
 */
int KVR_SetPlayerViewPort(KVR_ID id, const KVR_Rect *window);
int KVR_GetPlayerViewPort(KVR_ID id, KVR_Rect *window);

/* Opacity of the player's window, 0 to 255. KVR_ERR_INVALID_ARGUMENT for any other. */
int KVR_SetPlayerAlphaLevel(KVR_ID id, int alpha);
int KVR_GetPlayerAlphaLevel(KVR_ID id);

/* Whether the player's window is shown. */
int KVR_SetPlayerVisible(KVR_ID id, int visible);
int KVR_IsPlayerVisible(KVR_ID id);

/* How a picture whose shape differs from its window's is shown. */
enum KVR_DisplayMode {
    KVR_DISPLAY_LETTERBOX = 0, /* whole picture, bars beside it */
    KVR_DISPLAY_STRETCH = 1,   /* whole picture, distorted to fill the window */
    KVR_DISPLAY_CROP = 2       /* undistorted, what sticks out is cut off */
};

/*
 * How the picture is fitted into the player's window, an enum KVR_DisplayMode. KVR_ERR_INVALID_ARGUMENT for any other.
 */
int KVR_SetPlayerDisplayMode(KVR_ID id, int mode);
int KVR_GetPlayerDisplayMode(KVR_ID id);

/* ---- Graphics layer and video layout ---- */

/*
 * Sets the resolution of the graphics layer in pixels. The layer is scaled to fill the screen, whatever the screen's
 * own resolution. KVR_ERR_INVALID_ARGUMENT unless both are positive.
 */
int KVR_SetResolution(int width, int height);

/*
 * The part of the graphics layer, in its pixels, that is shown; what lies outside is not drawn.
 * KVR_ERR_INVALID_ARGUMENT unless width and height are positive.
 */
int KVR_SetGraphicsViewport(const KVR_Rect *viewport);
int KVR_GetGraphicsViewport(KVR_Rect *viewport);

/* Whether the graphics layer is shown. */
int KVR_SetGraphicsVisible(int visible);
int KVR_IsGraphicsVisible(void);

/* Opacity of the graphics layer, 0 to 255. KVR_ERR_INVALID_ARGUMENT above. */
int KVR_SetGraphicsAlphaLevel(unsigned int alpha);
int KVR_GetGraphicsAlphaLevel(void);

/*
 * The chroma key: while enabled, graphics pixels of exactly this red, green and blue are transparent. alpha is kept
 * and not used.
 */
int KVR_SetChromaKey(KVR_Color color);
int KVR_GetChromaKey(KVR_Color *color);
int KVR_SetChromaKeyEnable(int enable);
int KVR_IsChromaKeyEnable(void);

/*
 * The layout says how the players' windows share the screen. Layout 0 shows each window where KVR_SetPlayerViewPort
 * put it; what the others do, and how many there are, is the box's. KVR_ERR_INVALID_ARGUMENT for one that there is not.
 * KVR_SwitchToNextLayout goes to the next one, after the last to 0, and returns the new number.
 */
int KVR_SetCurrentLayout(int layout);
int KVR_GetCurrentLayout(void);
int KVR_SwitchToNextLayout(void);

/*
 * The stacking order of the players' windows: player identifiers from the bottom to the top. Players that order does
 * not name stay below those that it does. order may be NULL when count is 0. KVR_ERR_INVALID_ARGUMENT for a player that
 * there is not or that is named twice, and for a negative count. KVR_GetOrder hands out a new array.
 */
int KVR_SetOrder(const int *order, int count);
int KVR_GetOrder(int **order, int *count);

/* Whether the video outputs are switched on. */
int KVR_IsOutportsEnabled(void);

enum KVR_HdmiState {
    KVR_HDMI_UNPLUGGED = 0,
    KVR_HDMI_PLUGGED = 1, /* a cable, but the television is off or in standby */
    KVR_HDMI_ACTIVE = 2
};

/* The state of the HDMI output, an enum KVR_HdmiState. */
int KVR_GetHdmiState(void);

/* ---- Device and boot parameters ---- */

/* Each stores a new text in *text. On failure *text is left alone and there is nothing to free. */
int KVR_GetDeviceModel(char **text);
int KVR_GetFirmwareVersion(char **text);
int KVR_GetDeviceSerialNumber(char **text);

/*
 * Copies the value of a boot parameter, NUL-terminated and cut off to fit, into buffer, which holds 256 bytes. For a
 * key that has no value the buffer becomes an empty text and the result is KVR_ERR_FAILED.
 */
int KVR_GetBootParamValue(const char *key, char *buffer);

/*
 * Sets a boot parameter. It is in force, and safe against power loss, at the latest when KVR_SyncBootParams has
 * returned. KVR_ERR_INVALID_ARGUMENT for an empty key or a value of more than 255 bytes.
 */
int KVR_SetBootParamValue(const char *key, const char *value);

/* Brings all boot parameters to permanent storage, then sends KVR_EVENT_SYNC_DONE. May wait for the disk. */
int KVR_SyncBootParams(void);

/*
 * Fetches a firmware image from url in the background, verifies that it arrived whole and installs it.
 * KVR_ERR_INVALID_ARGUMENT for an empty url, KVR_ERR_INVALID_STATE while another image is fetched.
 */
int KVR_UpgradeFirmware(const char *url);

/* ---- Recordings ---- */

enum KVR_RecordState {
    KVR_RECORD_SCHEDULED = 0,
    KVR_RECORD_RUNNING = 1,
    KVR_RECORD_DONE = 2,
    KVR_RECORD_FAILED = 3,     /* nothing or nothing more could be recorded; the library's log says why */
    KVR_RECORD_INTERRUPTED = 4 /* the box went off in the middle; what was written is kept */
};

/*
 * Schedules a recording of url into the box's storage. file: file name below the storage root /mnt/stb. start: seconds
 * since 1970-01-01 00:00 UTC; a time that is over starts it at once. duration: seconds. Returns the identifier of the
 * recording, or a negative code: KVR_ERR_INVALID_ARGUMENT for an empty url or a duration that is not positive. A file
 * name that cannot be used makes a recording that has failed.
 */
KVR_ID KVR_AddRecord(const char *url, const char *file, uint32_t start, int duration);

/*
 * Stores a new array of all recordings in *records and its length in *count. Without recordings *count is 0 and
 * *records NULL or something that free takes.
 */
int KVR_GetRecordsList(KVR_Record **records, int *count);

/* An enum KVR_RecordState. */
int KVR_GetRecordStatus(KVR_ID id);

/*
 * Change a recording that has not begun; KVR_ERR_INVALID_STATE later, but a running one can change its duration.
 * KVR_ERR_INVALID_ARGUMENT for a duration that is not positive, a file name that cannot be used and an empty url.
 */
int KVR_SetRecordStartTime(KVR_ID id, uint32_t start);
int KVR_SetRecordDuration(KVR_ID id, int duration);
int KVR_SetRecordFilename(KVR_ID id, const char *file);
int KVR_SetRecordUrl(KVR_ID id, const char *url);

/*
 * The file name of a recording. The text belongs to the library, is valid until the calling thread's next call of this
 * function, and is never NULL: an unknown recording gives an empty text.
 */
const char *KVR_GetRecordFilename(KVR_ID id);

/* Forgets every recording that has ended, and the files of those that failed. */
int KVR_CleanUpRecords(void);

/* Stops a recording if it runs and forgets it. A file that was recorded stays. */
int KVR_DeleteRecord(KVR_ID id);

/*
 * Has handler called with the recording's identifier each time a recording is added, changes its state or is deleted.
 * One handler; a second call replaces it. KVR_CleanRecordsSharedCallback removes it.
 */
int KVR_SetRecordsSharedCallback(KVR_EventHandler handler);
int KVR_CleanRecordsSharedCallback(void);

#ifdef __cplusplus
}
#endif

#endif
