/* The public header is C: this compiles it alone, as C11, and links a call of each kind. */
#include <vornak.h>

#include <stdio.h>
#include <string.h>

int main(void)
{
    static TRANSCODE_CONSTRAINT_ST set;
    static TRANSCODE_CMD_ST command;
    set.mask = UINT64_C(1) << 8;
    setTranscodeConstraint(&set, 8, "2");
    if (getTranscodeCmdByCondition(&set, &command) != VORNAK_CMD_OK) return 1;
    if (ParseSingleTranscodeXML(NULL, VORNAK_MEDIA_MUSIC | VORNAK_MEDIA_VIDEO, 0, 0)) return 2;
    if (s_DefaultFormatParams[20].formatId != -1 || g_supportSRT[1]) return 3;
    char version[16];
    snprintf(version, sizeof version, "%d.%d.%d", VORNAK_VERSION_MAJOR, VORNAK_VERSION_MINOR,
             VORNAK_VERSION_PATCH);
    if (strcmp(version, VORNAK_VERSION) != 0) return 5;
    return printf("%s\n", command.cmd) == 7 ? 0 : 4;
}
