/**
 * libvornak: decides what of a media file a DLNA player can be sent as it is, what must be
 * transcoded, and how to tell a transcoder so. The library never decodes media.
 *
 * What holds for every call unless its own comment says otherwise:
 * - Threads: any thread may call any function; the library keeps no state and takes no lock.
 *   A loaded profile is only read, so many threads may share it while nobody releases it.
 * - Results: 0 is success, 1 failure. Nothing throws. A refused call writes no output.
 * - Ownership: texts handed out through `char **` or `const char *` are borrowed; those of a
 *   profile live as long as the profile. What must be freed says so.
 * - Null: a pointer must not be null unless its comment allows it; where one is null all the
 *   same, the call is refused with its failure result.
 * - Buffers without a size argument: the constant named in the comment is their capacity in
 *   bytes, the NUL included. A text that would not fit leaves the buffer empty and returns 1.
 * - Text: NUL-terminated bytes, in no particular encoding. Sizes count the NUL, lengths don't.
 * - Bit rates are in bits per second, sample rates in Hz, picture sizes in pixels.
 *
 * The host provides a registry of media ids, an XML reader and a few utilities; the library
 * leaves those symbols undefined. vornak_host.h says what it expects of them.
 */
#ifndef VORNAK_H
#define VORNAK_H

#include <semaphore.h>
#include <stddef.h>
#include <stdint.h>

/* What these headers describe; a change of the first number breaks programs built before. */
#define VORNAK_VERSION "1.0.0"
#define VORNAK_VERSION_MAJOR 1
#define VORNAK_VERSION_MINOR 0
#define VORNAK_VERSION_PATCH 0

#if defined(__GNUC__)
#define VORNAK_API __attribute__((visibility("default")))
#else
#define VORNAK_API
#endif

/* The records cross the library's border, so their layout is pinned here. Members behind a
 * pointer lie elsewhere where pointers have 32 bits: both offsets are given. */
#if defined(__cplusplus)
#define VORNAK_LAYOUT(condition) static_assert(condition, "record layout")
#else
#define VORNAK_LAYOUT(condition) _Static_assert(condition, "record layout")
#endif
#define VORNAK_BY_POINTER_SIZE(with64Bits, with32Bits)                                             \
    (sizeof(void *) == 8 ? (with64Bits) : (with32Bits))
#define VORNAK_AT(record, member, with64Bits, with32Bits)                                          \
    VORNAK_LAYOUT(offsetof(record, member) == VORNAK_BY_POINTER_SIZE(with64Bits, with32Bits))
#define VORNAK_SIZE(record, with64Bits, with32Bits)                                                \
    VORNAK_LAYOUT(sizeof(record) == VORNAK_BY_POINTER_SIZE(with64Bits, with32Bits))

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Device profiles --------------------------------------------------------------------- */

/* A rule table is an array of one record kind in the profile's order, ended by a record whose
 * id is -1. `count` of its first record bounds the positions that may be asked for; it counts
 * the XML elements, so it can exceed the number of records. Limits of 0 or less are no limits. */

/** One container that a player accepts, or into which a stream is transcoded (FORMAT). */
typedef struct TANASCODE_FORMAT_MAPPING_ST {
    int formatId;    /* low 16 bits: container; high 16: subtype, 0 for none; whole 0: any */
    char *mime;      /* MIME type to announce; null when the profile names none */
    char *pn;        /* DLNA profile name to announce; may be null */
    char *option;    /* the transcoder's container option, such as "-f mpegts"; may be null */
    int nonSeekable; /* 1: output in this container can't be sought in */
    int noTranscode; /* 1 in the first record: this container must not be produced */
    int count;       /* FORMAT elements in the same ACODEC */
} TANASCODE_FORMAT_MAPPING_ST;

VORNAK_AT(TANASCODE_FORMAT_MAPPING_ST, formatId, 0, 0);
VORNAK_AT(TANASCODE_FORMAT_MAPPING_ST, mime, 8, 4);
VORNAK_AT(TANASCODE_FORMAT_MAPPING_ST, pn, 16, 8);
VORNAK_AT(TANASCODE_FORMAT_MAPPING_ST, option, 24, 12);
VORNAK_AT(TANASCODE_FORMAT_MAPPING_ST, nonSeekable, 32, 16);
VORNAK_AT(TANASCODE_FORMAT_MAPPING_ST, noTranscode, 36, 20);
VORNAK_AT(TANASCODE_FORMAT_MAPPING_ST, count, 40, 24);
VORNAK_SIZE(TANASCODE_FORMAT_MAPPING_ST, 48, 28);

/** One audio codec that a player accepts, with its limits (ACODEC). */
typedef struct TRANSCODE_AUDIO_MAPPING_ST {
    int aCodecId;      /* registry id; 0: any codec, without looking at the limits */
    int aProfileId;    /* set of accepted profile bits */
    int aLevel;        /* highest accepted level */
    int maxChannels;   /* channels */
    int maxBitrate;    /* bits per second */
    int maxSampleRate; /* Hz, always a standard rate */
    int minChannels;   /* channels */
    int minBitrate;    /* bits per second */
    int minSampleRate; /* Hz, always a standard rate */
    char *option;      /* transcoder options for this codec; may be null */
    int noTranscode;   /* kept for the host, the library doesn't read it */
    int count;         /* ACODEC elements under the same parent */
    TANASCODE_FORMAT_MAPPING_ST *pFormatTable; /* its containers; never null in a valid rule */
} TRANSCODE_AUDIO_MAPPING_ST;

VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, aCodecId, 0, 0);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, aProfileId, 4, 4);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, aLevel, 8, 8);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, maxChannels, 12, 12);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, maxBitrate, 16, 16);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, maxSampleRate, 20, 20);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, minChannels, 24, 24);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, minBitrate, 28, 28);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, minSampleRate, 32, 32);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, option, 40, 36);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, noTranscode, 48, 40);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, count, 52, 44);
VORNAK_AT(TRANSCODE_AUDIO_MAPPING_ST, pFormatTable, 56, 48);
VORNAK_SIZE(TRANSCODE_AUDIO_MAPPING_ST, 64, 52);

/** One video codec that a player accepts, with its limits and its audio rules (VCODEC). */
typedef struct TRANSCODE_VIDEO_MAPPING_ST {
    int vCodecId;      /* registry id; 0: any codec, without looking at the limits */
    int vProfileId;    /* set of accepted profile bits */
    int vLevel;        /* highest accepted level */
    int maxWidth;      /* pixels; the sizes limit in pairs, one without the other does nothing */
    int maxHeight;     /* pixels */
    int maxBitrate;    /* bits per second */
    int minWidth;      /* pixels */
    int minHeight;     /* pixels */
    int minBitrate;    /* bits per second */
    int vaTranscode;   /* not 0: the hardware transcoder may serve this rule */
    int frame;         /* for the host */
    int tolerance;     /* pixels; above 0 the size limits become sizes to lie this close to */
    int playException; /* exception bits: a source whose own all lie in this set is refused */
    char *option;      /* transcoder options for this codec; may be null */
    int noTranscode;   /* 1: refuse the file if anything of it needs transcoding */
    int count;         /* VCODEC elements in the section */
    TRANSCODE_AUDIO_MAPPING_ST *pAudioTable; /* its audio rules; never null in a valid rule */
} TRANSCODE_VIDEO_MAPPING_ST;

VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, vCodecId, 0, 0);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, vProfileId, 4, 4);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, vLevel, 8, 8);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, maxWidth, 12, 12);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, maxHeight, 16, 16);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, maxBitrate, 20, 20);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, minWidth, 24, 24);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, minHeight, 28, 28);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, minBitrate, 32, 32);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, vaTranscode, 36, 36);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, frame, 40, 40);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, tolerance, 44, 44);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, playException, 48, 48);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, option, 56, 52);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, noTranscode, 64, 56);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, count, 68, 60);
VORNAK_AT(TRANSCODE_VIDEO_MAPPING_ST, pAudioTable, 72, 64);
VORNAK_SIZE(TRANSCODE_VIDEO_MAPPING_ST, 80, 68);

/** A loaded Device profile. */
typedef struct TRANSCODE_DEVICE_PROFILE_ST {
    char *deviceName;                        /* never null or empty */
    int mediaFlags;                          /* as given to the loader */
    int callerData1;                         /* as given to the loader */
    int callerData2;                         /* as given to the loader */
    TRANSCODE_AUDIO_MAPPING_ST *pAudioTable; /* rules for music files; may be null */
    TRANSCODE_VIDEO_MAPPING_ST *pVideoTable; /* rules for video files; may be null */
} TRANSCODE_DEVICE_PROFILE_ST;

VORNAK_AT(TRANSCODE_DEVICE_PROFILE_ST, deviceName, 0, 0);
VORNAK_AT(TRANSCODE_DEVICE_PROFILE_ST, mediaFlags, 8, 4);
VORNAK_AT(TRANSCODE_DEVICE_PROFILE_ST, callerData1, 12, 8);
VORNAK_AT(TRANSCODE_DEVICE_PROFILE_ST, callerData2, 16, 12);
VORNAK_AT(TRANSCODE_DEVICE_PROFILE_ST, pAudioTable, 24, 16);
VORNAK_AT(TRANSCODE_DEVICE_PROFILE_ST, pVideoTable, 32, 20);
VORNAK_SIZE(TRANSCODE_DEVICE_PROFILE_ST, 40, 24);

#define VORNAK_MEDIA_MUSIC 1 /* mediaFlags: load the MUSIC section */
#define VORNAK_MEDIA_VIDEO 4 /* mediaFlags: load the VIDEO section */

/**
 * Loads a Device profile. Any number of loads may run at the same time.
 * Unknown names in PROFILE and PLAY_EXCEPTION lists are reported on standard error and
 * skipped; elements without a known NAME are left out silently.
 * @param path        the profile file
 * @param mediaFlags  VORNAK_MEDIA_MUSIC and VORNAK_MEDIA_VIDEO, ORed; other bits are stored only
 * @return the profile, or null: null path, unreadable or not XML, no DEVICE, DEVICE without
 *         NAME, out of memory. Every block of it (the object, each table, each text) is the
 *         caller's to free(), children before parents; a table's records end at id -1.
 */
VORNAK_API TRANSCODE_DEVICE_PROFILE_ST *ParseSingleTranscodeXML(const char *path, int mediaFlags,
                                                                int callerData1, int callerData2);

/* ---- Decisions --------------------------------------------------------------------------- */

/* An index of 0 to 255 keeps a stream as the rule at that position describes it. This value
 * says to transcode it, to what rule 0 describes; the low 8 bits are the position in any case.
 * Records past position 255 are never chosen. */
#define VORNAK_TRANSCODE 256

/* Results of the matching functions. */
#define VORNAK_DECIDED 0     /* Find…: see the indexes; get…Index: something is transcoded */
#define VORNAK_KEPT 1        /* get…Index: no table, or nothing needs transcoding */
#define VORNAK_NO_TABLE 1    /* no rule table, or the chosen rule has no container table */
#define VORNAK_NONSEEKABLE 2 /* transcoded into a container that can't be sought in */
#define VORNAK_NOT_ALLOWED 3 /* transcoding is needed, and NOTRANSCODE forbids it */

/**
 * Decides for a music file: which audio rule and which container entry take it, if any.
 * With g_debug_level set, the walk is traced on standard error.
 * @param pAudioTable     the profile's MUSIC rules
 * @param srcAProfileId   profile bits of the source, 0 if unknown
 * @param srcFormatId     container id of the source, with its subtype
 * @param pAudioIndex     receives the rule's position or VORNAK_TRANSCODE
 * @param pFormatIndex    receives the entry's position or VORNAK_TRANSCODE
 * @param pMime, pPN      may be null; receive the entry's texts, which may be null
 * @param pDstFormatId    may be null; receives the output's container id
 * @param preferFormatId  container preferred for the output; 0 or less: none
 * @param pIsWavPcm       may be null; receives 1 for linear PCM in WAV, else 0
 * @param forceTranscode  not 0: transcode whatever the rules say
 * @return VORNAK_DECIDED: something is transcoded; VORNAK_KEPT: the file can be sent as it is,
 *         or a table is missing: *pIsWavPcm is then 0, and of the other outputs those are
 *         written that were decided before;
 *         VORNAK_NONSEEKABLE, VORNAK_NOT_ALLOWED
 */
VORNAK_API int getMusicTranscodeIndex2(TRANSCODE_AUDIO_MAPPING_ST *pAudioTable, int srcACodecId,
                                       int srcAProfileId, int srcALevel, int srcAChannels,
                                       int srcABitrate, int srcASampleRate, int srcFormatId,
                                       int *pAudioIndex, int *pFormatIndex, char **pMime,
                                       char **pPN, int *pDstFormatId, int preferFormatId,
                                       int *pIsWavPcm, int forceTranscode);

/** getMusicTranscodeIndex2() with no preferred container, no pIsWavPcm and nothing forced. */
VORNAK_API int getMusicTranscodeIndex(TRANSCODE_AUDIO_MAPPING_ST *pAudioTable, int srcACodecId,
                                      int srcAProfileId, int srcALevel, int srcAChannels,
                                      int srcABitrate, int srcASampleRate, int srcFormatId,
                                      int *pAudioIndex, int *pFormatIndex, char **pMime, char **pPN,
                                      int *pDstFormatId);

/** getVideoTranscodeIndex2() without a preferred container. */
VORNAK_API int getVideoTranscodeIndex(TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int srcVCodecId,
                                      int srcVProfileId, int srcVLevel, int srcWidth, int srcHeight,
                                      int srcVBitrate, int srcACodecId, int srcAProfileId,
                                      int srcALevel, int srcAChannels, int srcABitrate,
                                      int srcASampleRate, int srcFormatId, int *pVideoIndex,
                                      int *pAudioIndex, int *pFormatIndex, char **pMime, char **pPN,
                                      int *pDstFormatId, int matchVideo, int forceTranscode,
                                      int assignTrack, int srcVCodecFlag);

#ifdef __cplusplus
} /* extern "C"; the next four have type-qualified symbols, so C can't call them */

/**
 * The audio step of a decision. Parameters as in getMusicTranscodeIndex2(), and:
 * @param transcoding  1: the stream is transcoded anyway, so the output's container is chosen
 *                     instead of one that takes the source's
 * @return VORNAK_DECIDED, VORNAK_NO_TABLE, VORNAK_NONSEEKABLE or VORNAK_NOT_ALLOWED
 */
VORNAK_API int FindMusicTranscode(TRANSCODE_AUDIO_MAPPING_ST *pAudioTable, int srcACodecId,
                                  int srcAProfileId, int srcALevel, int srcAChannels,
                                  int srcABitrate, int srcASampleRate, int srcFormatId,
                                  int *pAudioIndex, int *pFormatIndex, char **pMime, char **pPN,
                                  int *pDstFormatId, int transcoding, int preferFormatId,
                                  int *pIsWavPcm, int forceTranscode);

/**
 * The whole decision for a video file, with the source's container id taken as it is.
 * Parameters as in getVideoTranscodeIndex2().
 * @return VORNAK_DECIDED, VORNAK_NO_TABLE, VORNAK_NONSEEKABLE or VORNAK_NOT_ALLOWED
 */
VORNAK_API int FindVideoTranscode(TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int srcVCodecId,
                                  int srcVProfileId, int srcVLevel, int srcWidth, int srcHeight,
                                  int srcVBitrate, int srcACodecId, int srcAProfileId,
                                  int srcALevel, int srcAChannels, int srcABitrate,
                                  int srcASampleRate, int srcFormatId, int *pVideoIndex,
                                  int *pAudioIndex, int *pFormatIndex, char **pMime, char **pPN,
                                  int *pDstFormatId, int preferFormatId, int matchVideo,
                                  int forceTranscode, int assignTrack, int srcVCodecFlag);

/**
 * Decides for a video file: the video rule, and within it the audio rule and the container.
 * The elementary and raw forms of the MPEG streams count as program and transport streams.
 * @param pVideoTable     the profile's VIDEO rules
 * @param pVideoIndex     receives the video rule's position or VORNAK_TRANSCODE
 * @param pAudioIndex     the same for the audio rule inside that video rule
 * @param pFormatIndex    the same for the container entry inside that audio rule
 * @param pMime, pPN      may be null; as in getMusicTranscodeIndex2(), null on a refusal
 * @param pDstFormatId    may be null; the output's container, the source's on a refusal
 * @param preferFormatId  container preferred for the output; 0 or less: none
 * @param matchVideo      1: match the video stream; else take rule 0 as it is
 * @param forceTranscode  not 0: transcode all three whatever the rules say
 * @param assignTrack     not 0: a track was assigned, so the video is transcoded
 * @param srcVCodecFlag   play-exception bits of the source; 0: none
 * @return as getMusicTranscodeIndex2()
 */
VORNAK_API int getVideoTranscodeIndex2(
    TRANSCODE_VIDEO_MAPPING_ST *pVideoTable, int srcVCodecId, int srcVProfileId, int srcVLevel,
    int srcWidth, int srcHeight, int srcVBitrate, int srcACodecId, int srcAProfileId, int srcALevel,
    int srcAChannels, int srcABitrate, int srcASampleRate, int srcFormatId, int *pVideoIndex,
    int *pAudioIndex, int *pFormatIndex, char **pMime, char **pPN, int *pDstFormatId,
    int preferFormatId, int matchVideo, int forceTranscode, int assignTrack, int srcVCodecFlag);

/**
 * The container step of a decision: the entry that takes the source's container, or the one
 * that describes the output's.
 * @param pFormatTable  an audio rule's containers
 * @param transcoding   exactly 1: choose the output's entry
 * @return VORNAK_DECIDED, VORNAK_NO_TABLE, VORNAK_NONSEEKABLE or VORNAK_NOT_ALLOWED
 */
VORNAK_API int FindFormatTranscode(TANASCODE_FORMAT_MAPPING_ST *pFormatTable, int srcFormatId,
                                   int *pFormatIndex, char **pMime, char **pPN, int *pDstFormatId,
                                   int transcoding, int preferFormatId, int forceTranscode);

extern "C" {
#endif

/* ---- Transcoder options ------------------------------------------------------------------ */

#define VORNAK_CONSTRAINT_SLOTS 64        /* value slots of a constraint set */
#define VORNAK_CONSTRAINT_VALUE_SIZE 1024 /* bytes of one slot */
#define VORNAK_CMD_SIZE 1024              /* bytes of a command's text */
#define VORNAK_OPTION_TEXT_SIZE 4096      /* capacity of an option buffer */
#define VORNAK_TAG_SIZE 512               /* capacity of a tag buffer */

/** The limits that a source exceeds, as value texts. The host clears it before first use. */
typedef struct TRANSCODE_CONSTRAINT_ST {
    int mode;      /* option dialect: 1 the second, any other value the first */
    uint64_t mask; /* bit n: slot n holds a value to be formatted */
    char value[VORNAK_CONSTRAINT_SLOTS][VORNAK_CONSTRAINT_VALUE_SIZE];
} TRANSCODE_CONSTRAINT_ST;

VORNAK_AT(TRANSCODE_CONSTRAINT_ST, mode, 0, 0);
VORNAK_AT(TRANSCODE_CONSTRAINT_ST, mask, 8, 8);
VORNAK_AT(TRANSCODE_CONSTRAINT_ST, value, 16, 16);
VORNAK_SIZE(TRANSCODE_CONSTRAINT_ST, 65552, 65552);

/** The host's result record; the library touches its text alone. */
typedef struct TRANSCODE_CMD_ST {
    char host[1028];           /* the host's */
    char cmd[VORNAK_CMD_SIZE]; /* option text, each option with a blank before it */
} TRANSCODE_CMD_ST;

VORNAK_AT(TRANSCODE_CMD_ST, cmd, 1028, 1028);
VORNAK_SIZE(TRANSCODE_CMD_ST, 2052, 2052);

/* Results of getTranscodeCmdByCondition(). */
#define VORNAK_CMD_OK 0
#define VORNAK_CMD_BAD_INPUT 1
#define VORNAK_CMD_BAD_OUTPUT 2
#define VORNAK_CMD_NO_MEMORY 3

/**
 * Stores a value text in a slot, cut to 1023 characters; the mask stays. Does nothing for a
 * null set or text or a slot outside 0 to 63.
 */
VORNAK_API void setTranscodeConstraint(TRANSCODE_CONSTRAINT_ST *set, int slot, const char *text);

/**
 * Renders the marked slots 0 to 13 as option text, in slot order; marks above are ignored.
 * @return VORNAK_CMD_OK; VORNAK_CMD_BAD_OUTPUT: null record, or the text would exceed the
 *         buffer; VORNAK_CMD_BAD_INPUT: null set, empty value, or a picture size without "x";
 *         VORNAK_CMD_NO_MEMORY. After a failure `cmd` holds the fragments before it; it is
 *         cleared whenever there is a record.
 */
VORNAK_API int getTranscodeCmdByCondition(const TRANSCODE_CONSTRAINT_ST *set,
                                          TRANSCODE_CMD_ST *result);

/**
 * Prints the message of a result code on standard output, without a line end.
 * @return the bytes printed; 0, and nothing printed, for any other code
 */
VORNAK_API int printError(int code);

/** A row of s_DefaultFormatParams. */
typedef struct DEFAULT_FORMAT_PARAM_ST {
    int formatId;       /* container id; -1 ends the table */
    const char *option; /* container option; null in the last row */
} DEFAULT_FORMAT_PARAM_ST;

VORNAK_AT(DEFAULT_FORMAT_PARAM_ST, option, 8, 4);
VORNAK_SIZE(DEFAULT_FORMAT_PARAM_ST, 16, 8);

/** Container options for entries that name no container; the library only reads it. */
extern VORNAK_API DEFAULT_FORMAT_PARAM_ST s_DefaultFormatParams[21];

/**
 * Records in `set` those limits of an audio rule that the source lies outside of: value texts
 * in slots 8 to 13 and their mask bits. Writes two lines, and one for each limit, to standard
 * error. Earlier values and bits stay.
 * @param audioIndex   as getMusicTranscodeIndex2() delivers it
 * @param srcProperty  codec id, profile bits, level, channels, bit rate, sample rate
 * @return 0, or 1: a null argument, or a position at or past the table's count
 */
VORNAK_API int genAudioTranscodeParameter(int audioIndex,
                                          const TRANSCODE_AUDIO_MAPPING_ST *pAudioTable,
                                          const int srcProperty[6], TRANSCODE_CONSTRAINT_ST *set);

/**
 * Assembles the transcoder options of a music file: container, frame count, audio.
 * @param option           receives the options; VORNAK_OPTION_TEXT_SIZE bytes
 * @param tag              receives the output's name "codec_profile.container-subtype";
 *                         VORNAK_TAG_SIZE bytes; may be null
 * @param defaultFormatId  container used where the chosen entry has the id 0; 0: none
 * @param frameCount       sample frames of the output (samples a channel); 0 or less: unknown
 * @return 0, or 1: null table or option buffer, a position at or past its table's count, no
 *         container option, an id that the registry can't name, a text that does not fit.
 *         Then `option` is empty and `tag` untouched, unless only the tag failed: then
 *         `option` is complete and `tag` holds what was built; never begun, it is untouched.
 */
VORNAK_API int getMusicTranscodeParams2(const TRANSCODE_AUDIO_MAPPING_ST *pAudioTable,
                                        int audioIndex, int formatIndex, char *option, char *tag,
                                        int defaultFormatId, int64_t frameCount);

/** getMusicTranscodeParams2() without a default container and a frame count. */
VORNAK_API int getMusicTranscodeParams(const TRANSCODE_AUDIO_MAPPING_ST *pAudioTable,
                                       int audioIndex, int formatIndex, char *option, char *tag);

/**
 * Hands out the MIME type and the DLNA profile name of a container entry; both may be null.
 * @return 0, or 1: a null argument, or a position at or past its table's count
 */
VORNAK_API int getMusicTranscodeDLNAAttr(const TRANSCODE_AUDIO_MAPPING_ST *pAudioTable,
                                         int audioIndex, int formatIndex, char **pMime, char **pPN);

/**
 * Records in `set` those limits of a video rule that the source lies outside of: value texts
 * in slots 2 to 5 and their mask bits. Writes one line to standard error.
 * @param srcProperty  codec id, profile bits, level, width, height, bit rate
 * @return as genAudioTranscodeParameter()
 */
VORNAK_API int genVideoTranscodeParameter(int videoIndex,
                                          const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable,
                                          const int srcProperty[6], TRANSCODE_CONSTRAINT_ST *set);

/**
 * Assembles the transcoder options of a video file: container, video, audio.
 * @param option      receives the options; VORNAK_OPTION_TEXT_SIZE bytes
 * @param tag         receives "vcodec_profile_acodec_profile.container.brand";
 *                    VORNAK_TAG_SIZE bytes; may be null
 * @param forceVideo  not 0: use the rule's video options though the video is kept
 * @return as getMusicTranscodeParams2()
 */
VORNAK_API int getVideoTranscodeParams2(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable,
                                        int videoIndex, int audioIndex, int formatIndex,
                                        char *option, char *tag, int forceVideo,
                                        int defaultFormatId);

/** getVideoTranscodeParams2() without a default container. */
VORNAK_API int getVideoTranscodeParams(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable,
                                       int videoIndex, int audioIndex, int formatIndex,
                                       char *option, char *tag, int forceVideo);

/**
 * Hands out the option texts of the three chosen rules as the profile gives them.
 * @param pVideoOption, pAudioOption, pFormatOption  each may be null; receive texts that may
 *        be null. Those before a failing step stay written.
 */
VORNAK_API int getVideoTranscodeOptions(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable,
                                        int videoIndex, int audioIndex, int formatIndex,
                                        char **pVideoOption, char **pAudioOption,
                                        char **pFormatOption);

/** getMusicTranscodeDLNAAttr() for a video file. */
VORNAK_API int getVideoTranscodeDLNAAttr(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable,
                                         int videoIndex, int audioIndex, int formatIndex,
                                         char **pMime, char **pPN);

/** The rule's frame value; 0 for a null table or a position at or past its count. */
VORNAK_API int getVideoTranscodeFrame(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable,
                                      int videoIndex);

/** 1 when the hardware transcoder may serve the rule, else 0, also without such a rule. */
VORNAK_API int isVideoSupportVATranscode(const TRANSCODE_VIDEO_MAPPING_ST *pVideoTable,
                                         int videoIndex);

/**
 * Estimates the size of a linear PCM output from the option texts of the chosen rule.
 * @param duration         length of the source in seconds; 1 or more
 * @param reserved         not read
 * @param defaultFormatId  as in getMusicTranscodeParams2()
 * @param pSize            receives bytes, the header included; 0 on failure
 * @param pHeader          receives the bytes of the container's header; 0 on failure
 * @param pFrameCount      receives sample frames (samples a channel); unchanged on failure
 * @return 0, or 1: the output is not PCM in a container of known size, or its rate is outside
 *         44100 to 320000 Hz, or it has more than 8 channels. A null out pointer gives 1 with
 *         nothing written.
 */
VORNAK_API int guessMusicTranscodeFileLength(const TRANSCODE_AUDIO_MAPPING_ST *pAudioTable,
                                             int audioIndex, int formatIndex, int duration,
                                             int reserved, int defaultFormatId, int64_t *pSize,
                                             int *pHeader, int64_t *pFrameCount);

/* ---- The appliance ----------------------------------------------------------------------- */

/**
 * Reads one value of the add-on registry by running the configuration query tool.
 * @param section, key  letters, digits, "_", "-" and "." alone, together at most 982
 *                      characters; anything else is refused without starting a process
 * @param value         receives the first line that the tool prints, cut to size - 1 characters
 *                      and to 1023; an empty line is a value
 * @param size          bytes of `value`, 1 or more
 * @return 0, or 1: refused, or the tool printed nothing. `value` is then untouched.
 */
VORNAK_API int getPakrelInfo(const char *section, const char *key, char *value, int size);

/** 1 when the marker of the add-on's hardware transcoder exists, else 0. */
VORNAK_API int isHWFfmpegExist(void);

/**
 * Asks the add-on registry for the hardware transcode agent; runs the query tool up to twice.
 * @return 2: the second-generation agent is installed, 1: only the first, 0: none, or the
 *         add-on is not enabled. An agent whose path would have 1024 characters or more counts
 *         as absent.
 */
VORNAK_API int isVATranscodeExist(void);

#define VORNAK_VOLUME_ROOT_SIZE 4096 /* capacity of getMainMountPath()'s buffer */

/**
 * Finds the directory in which the appliance's well-known shares live.
 * @param root  receives the directory, ending in "/"; VORNAK_VOLUME_ROOT_SIZE bytes
 * @return 0, or 1 with `root` untouched: no share, or the first one resolves to a path without
 *         its name
 */
VORNAK_API int getMainMountPath(char *root);

/**
 * Looks for a copy of a music file that was transcoded ahead of time.
 * @param reserved1 … reserved4  not read
 * @param tag1, tag2  name the variant
 * @param source      the source file's path; must hold a "/"
 * @return the copy's path, the caller's to free(); or null: no readable copy, or a path of
 *         1024 characters or more
 */
VORNAK_API char *IsMusicTranscodeFileReady(int reserved1, int reserved2, int reserved3,
                                           int reserved4, const char *tag1, const char *tag2,
                                           const char *source);

/** The same for a video file. */
VORNAK_API char *IsVideoTranscodeFileReady(int reserved1, int reserved2, int reserved3,
                                           int reserved4, int reserved5, const char *tag1,
                                           const char *tag2, const char *source);

/** The open handle of the database lock: null before Vornak_Mutex_Init(), and where it failed. */
extern VORNAK_API sem_t *vornak_db_mutex;

/**
 * Opens the system-wide database lock, the named semaphore "VORNAK_DB_SEM", creating it free
 * where it doesn't exist. Its permission bits are 0777 less the host's umask. Call once in a
 * process, not while another thread is inside one of the other three.
 * @param mode  0: also release a lock that is held, presuming that its holder died; 1: attach
 * @return 0, or 1: any other mode (the handle is untouched) or a failed open (it is null)
 */
VORNAK_API int Vornak_Mutex_Init(int mode);

/* Each returns what sem_wait(), sem_post() and sem_close() return: 0, or -1 with errno set,
 * EINVAL without an open handle. A wait that a signal interrupts (EINTR) has not taken the
 * lock. The lock is counted, not owned: anybody may release it, and taking it twice blocks.
 * Close leaves the stale handle in vornak_db_mutex. */
VORNAK_API int Vornak_Mutex_Lock(void);
VORNAK_API int Vornak_Mutex_Unlock(void);
VORNAK_API int Vornak_Mutex_Close(void);

/* ---- GStreamer elements ------------------------------------------------------------------ */

/**
 * The pipeline fragment that decodes a codec, or null: no such element, or hardware asked of a
 * machine that has none. The text is constant and lives as long as the library.
 * @param sourceKind     10 and 11 keep the software decoder
 * @param platformClass  hardware decoding exists on 1, 2, 3, 7, 8, 9 and 10
 * @param hwDecode       not 0: a hardware decoder is asked for
 */
VORNAK_API const char *CodecId_To_GSTCodecStr(int codecId, int sourceKind, int platformClass,
                                              int hwDecode);

/** The element that demultiplexes a container, whatever its subtype; or null. */
VORNAK_API const char *FormatId_To_GSTMuxDecStr(int formatId);

/** The fragment that multiplexes a container, or null. @param flagOut may be null; receives
 *  the muxer flag, unchanged where there is no multiplexer. */
VORNAK_API const char *FormatId_To_GSTMuxEncStr(int formatId, int *flagOut);

/* ---- Disc images ------------------------------------------------------------------------- */

#define VORNAK_MOUNT_POINT_SIZE 32 /* always suffices for a mount point's name */

/**
 * Mounts a disc image read-only on a fresh directory under /tmp, with mount(8). Undo with
 * umountIso(). Blocks until the command has ended.
 * @param isoFolder      directory of the image, ending in "/"; at most 1023 characters
 * @param isoFileName    the image in it; at most 1023 characters
 * @param mountPointOut  receives the new directory, ending in "/"; cleared first
 * @param size           bytes of mountPointOut
 * @return 0, or 1: too small a buffer (it is then empty), a path too long, a failed mount (the
 *         name stays in mountPointOut, and an empty directory may stay)
 */
VORNAK_API int mountIso(const char *isoFolder, const char *isoFileName, char *mountPointOut,
                        unsigned size);

/** mountIso() inside the directory rootDir, in a child process; the name is a path inside it, and
 *  stays in mountPointOut also when rootDir is null. The child's working directory stays where it
 *  was: relative paths don't begin in rootDir. */
VORNAK_API int chrootMountIso(const char *isoFolder, const char *isoFileName, char *mountPointOut,
                              unsigned size, const char *rootDir);

/**
 * Mounts a disc image read-only on a directory of the caller's choice, made if it is missing.
 * @param mountPoint  reaches mount(8) as it is: put "./" before one that begins with a dash, or it
 *                    is an option there. At most 1023 characters, and not more when quoted for the
 *                    shell, if it holds anything but letters, digits and "/._-+,:@"; the whole
 *                    command has 2047
 * @return 0, 1 where the call is refused, or the status of the command interpreter
 */
VORNAK_API int mountIsoByPath(const char *isoFolder, const char *isoFileName,
                              const char *mountPoint);

/** mountIsoByPath() inside rootDir, in a child process; 0 or 1. */
VORNAK_API int chrootMountIsoByPath(const char *isoFolder, const char *isoFileName,
                                    const char *mountPoint, const char *rootDir);

/** Unmounts a mount point of at most 1023 characters and removes its directory. 1 leaves what
 *  could not be undone. */
VORNAK_API int umountIso(const char *mountPoint);

/** umountIso() inside rootDir, in a child process. */
VORNAK_API int chrootUmountIso(const char *mountPoint, const char *rootDir);

/**
 * Unmounts and removes every mount point of mountIso(), in whatever process it is in use. The shell
 * finds them by the start of their path, under which anybody may make a link in /tmp: what the link
 * leads to is unmounted as well. 1 also where there is none, or one of that name isn't mounted.
 */
VORNAK_API int umountAllIso(void);

#define VORNAK_DISC_DVD 4
#define VORNAK_DISC_BD 5

/** The main title of a DVD. */
typedef struct DVD_FORMAT_ST {
    char folder[1024];   /* as given, ending in "/" */
    char fileName[1024]; /* the title's first part, "VTS_01_1.VOB" */
    int titleNo;         /* its title set, 0 to 99 */
    int64_t totalSize;   /* bytes of all its parts */
    int partCount;       /* parts counted */
} DVD_FORMAT_ST;

VORNAK_AT(DVD_FORMAT_ST, fileName, 1024, 1024);
VORNAK_AT(DVD_FORMAT_ST, titleNo, 2048, 2048);
VORNAK_AT(DVD_FORMAT_ST, totalSize, 2056, 2056);
VORNAK_AT(DVD_FORMAT_ST, partCount, 2064, 2064);
VORNAK_SIZE(DVD_FORMAT_ST, 2072, 2072);

/** The main title of a Blu-ray. */
typedef struct BD_FORMAT_ST {
    char folder[1024];   /* the stream folder, ending in "/" */
    char fileName[1024]; /* its largest stream file */
    int64_t fileSize;    /* bytes of that file */
} BD_FORMAT_ST;

VORNAK_AT(BD_FORMAT_ST, fileName, 1024, 1024);
VORNAK_AT(BD_FORMAT_ST, fileSize, 2048, 2048);
VORNAK_SIZE(BD_FORMAT_ST, 2056, 2056);

/**
 * Tells whether a folder is a disc and where its index file lies.
 * @param folder  root of the disc, ending in "/"
 * @param out     receives the index file's path, cut to outSize - 1 characters; outSize 0
 *                writes nothing
 * @return VORNAK_DISC_DVD, VORNAK_DISC_BD, or 0: neither, or a bad argument. What lies at a path
 *         of 1024 characters or more inside a disc counts as absent, here and below.
 */
VORNAK_API int parseMountedFolder(const char *folder, char *out, unsigned outSize);

/** The same with the path in two pieces, the folder with its "/" and the file's name. */
VORNAK_API int parseMountedFolder_v2(const char *folder, char *dirOut, unsigned dirOutSize,
                                     char *nameOut, unsigned nameOutSize);

/**
 * Finds the main title of a DVD, the title set whose parts are largest together.
 * @param folder   the VIDEO_TS folder, ending in "/"
 * @param ifoName  "VIDEO_TS.IFO" in any letter case
 * @param info     cleared first; without any part its title is 0. Where the folder can't be read
 *                 to its end, its name is left in it.
 */
VORNAK_API int parseDVDFormat(const char *folder, const char *ifoName, DVD_FORMAT_ST *info);

/**
 * Finds the main title of a Blu-ray, its largest stream file.
 * @param folder     the BDMV folder, ending in "/"
 * @param indexName  "index.bdmv" in any letter case
 * @param info       cleared first
 * @return 0, or 1: also when no stream file is larger than 0 bytes, or a folder can't be read to
 *         its end
 */
VORNAK_API int parseBDFormat(const char *folder, const char *indexName, BD_FORMAT_ST *info);

/* ---- Subtitles --------------------------------------------------------------------------- */

#define VORNAK_SUBTITLE_SRT 0
#define VORNAK_SUBTITLE_VTT 1
#define VORNAK_SUBTITLE_END 2 /* `type` of the record that ends a list or table */

#define VORNAK_SUBTITLE_LIST_SIZE 10   /* records of a list: nine files and the end */
#define VORNAK_SUBTITLE_PATH_SIZE 4352 /* capacity of findVideoSubtitle()'s path */

/** A subtitle file, or a kind of them. */
typedef struct VIDEO_SUBTITLE_ST {
    int type;            /* VORNAK_SUBTITLE_… */
    char fileName[1024]; /* the file's name in its folder; empty in a kind */
    char lang[10];       /* language tag, or "unkown"; empty in a kind */
    char ext[10];        /* the kind's extension with its point */
    char fullPath[1024]; /* the file's path; in a kind, what follows the stem of the video */
} VIDEO_SUBTITLE_ST;

VORNAK_AT(VIDEO_SUBTITLE_ST, fileName, 4, 4);
VORNAK_AT(VIDEO_SUBTITLE_ST, lang, 1028, 1028);
VORNAK_AT(VIDEO_SUBTITLE_ST, ext, 1038, 1038);
VORNAK_AT(VIDEO_SUBTITLE_ST, fullPath, 1048, 1048);
VORNAK_SIZE(VIDEO_SUBTITLE_ST, 2072, 2072);

/** The kinds of subtitle files; the library only reads it. */
extern VORNAK_API VIDEO_SUBTITLE_ST g_support_subtitles[3];

/** The extensions that findVideoSubtitle() tries, ended by null; the library only reads it. */
extern VORNAK_API const char *g_supportSRT[2];

/**
 * Lists the subtitle files that belong to a video: those whose names begin with the video's
 * name less its extension. Names each candidate on standard output.
 * @param folder     the video's folder, ending in "/"
 * @param videoName  the video's file name
 * @param list       VORNAK_SUBTITLE_LIST_SIZE records; the last one used has the type
 *                   VORNAK_SUBTITLE_END and an empty path, the rest of it stays as it was
 * @param reserved   not read
 * @return 0, also when none was found; 1, with the list untouched, if the folder can't be read to
 *         its end
 */
VORNAK_API int findVideoSubtitles(const char *folder, const char *videoName,
                                  VIDEO_SUBTITLE_ST *list, int reserved);

/** findVideoSubtitles() for the video at a full path; 1 also for a path without "/", or with a
 *  folder of more than 1023 characters. */
VORNAK_API int findVideoSubtitlesByFullPath(const char *videoPath, VIDEO_SUBTITLE_ST *list,
                                            int reserved);

/**
 * Finds the one SRT file that has the video's name.
 * @param path  receives the file's path; VORNAK_SUBTITLE_PATH_SIZE bytes
 * @return 0, or 1 with `path` untouched: none found, or the folder can't be read
 */
VORNAK_API int findVideoSubtitle(const char *folder, const char *videoName, char *path);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* VORNAK_H */
