#include "include/vornak.h"

VIDEO_SUBTITLE_ST g_support_subtitles[] = {
    // type               fileName lang ext     what follows the stem
    {VORNAK_SUBTITLE_SRT, "", "", ".srt", ".srt"},
    {VORNAK_SUBTITLE_VTT, "", "", ".vtt", ".vtt"},
    {VORNAK_SUBTITLE_END, "", "", "", ""},
};

const char *g_supportSRT[] = {".srt", nullptr};
