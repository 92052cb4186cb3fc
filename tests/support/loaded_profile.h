// A loaded profile that is freed as its owner has to, and its whole content as text.
#pragma once

#include "include/vornak.h"

#include <cstdlib>
#include <memory>
#include <sstream>
#include <string>

namespace vornak::test {

inline bool isEnd(const TANASCODE_FORMAT_MAPPING_ST &entry)
{
    return entry.formatId == -1;
}
inline bool isEnd(const TRANSCODE_AUDIO_MAPPING_ST &rule)
{
    return rule.aCodecId == -1;
}
inline bool isEnd(const TRANSCODE_VIDEO_MAPPING_ST &rule)
{
    return rule.vCodecId == -1;
}

/// Frees the records of a table, then the table.
template <class Record, class FreeRecord>
void freeTable(Record *table, FreeRecord freeRecord)
{
    for (Record *record = table; record && !isEnd(*record); ++record) {
        freeRecord(*record);
        std::free(record->option);
    }
    std::free(table);
}

inline void freeAudioTable(TRANSCODE_AUDIO_MAPPING_ST *table)
{
    freeTable(table, [](const TRANSCODE_AUDIO_MAPPING_ST &rule) {
        freeTable(rule.pFormatTable, [](const TANASCODE_FORMAT_MAPPING_ST &entry) {
            std::free(entry.mime);
            std::free(entry.pn);
        });
    });
}

struct FreeProfile {
    void operator()(TRANSCODE_DEVICE_PROFILE_ST *profile) const
    {
        freeTable(profile->pVideoTable,
                  [](const TRANSCODE_VIDEO_MAPPING_ST &rule) { freeAudioTable(rule.pAudioTable); });
        freeAudioTable(profile->pAudioTable);
        std::free(profile->deviceName);
        std::free(profile);
    }
};

using LoadedProfile = std::unique_ptr<TRANSCODE_DEVICE_PROFILE_ST, FreeProfile>;

/// Writes what a profile holds, a record a line; fields that are 0 or null are left out.
class ProfileWriter {
public:
    std::string write(const TRANSCODE_DEVICE_PROFILE_ST &profile)
    {
        begin("device");
        add("name", profile.deviceName);
        add("flags", profile.mediaFlags);
        add("data1", profile.callerData1);
        add("data2", profile.callerData2);
        out_ << '\n';
        writeTable(profile.pAudioTable);
        writeTable(profile.pVideoTable);
        return out_.str();
    }

    /// Whether all free records were clear.
    bool allClear() const { return allClear_; }

private:
    void begin(const char *kind) { out_ << std::string(2 * depth_, ' ') << kind; }
    void add(const char *name, int value)
    {
        if (value != 0) out_ << ' ' << name << '=' << value;
    }
    void add(const char *name, const char *text)
    {
        if (text) out_ << ' ' << name << "='" << text << '\'';
    }

    void writeRecord(const TANASCODE_FORMAT_MAPPING_ST &entry)
    {
        begin("format ");
        out_ << entry.formatId;
        add("mime", entry.mime);
        add("pn", entry.pn);
        add("option", entry.option);
        add("nonSeekable", entry.nonSeekable);
        add("noTranscode", entry.noTranscode);
    }
    void writeInner(const TANASCODE_FORMAT_MAPPING_ST &) {}

    void writeRecord(const TRANSCODE_AUDIO_MAPPING_ST &rule)
    {
        begin("audio ");
        out_ << rule.aCodecId;
        add("profile", rule.aProfileId);
        add("level", rule.aLevel);
        add("maxChannels", rule.maxChannels);
        add("maxBitrate", rule.maxBitrate);
        add("maxSampleRate", rule.maxSampleRate);
        add("minChannels", rule.minChannels);
        add("minBitrate", rule.minBitrate);
        add("minSampleRate", rule.minSampleRate);
        add("option", rule.option);
        add("noTranscode", rule.noTranscode);
    }
    void writeInner(const TRANSCODE_AUDIO_MAPPING_ST &rule) { writeTable(rule.pFormatTable); }

    void writeRecord(const TRANSCODE_VIDEO_MAPPING_ST &rule)
    {
        begin("video ");
        out_ << rule.vCodecId;
        add("profile", rule.vProfileId);
        add("level", rule.vLevel);
        add("maxWidth", rule.maxWidth);
        add("maxHeight", rule.maxHeight);
        add("maxBitrate", rule.maxBitrate);
        add("minWidth", rule.minWidth);
        add("minHeight", rule.minHeight);
        add("minBitrate", rule.minBitrate);
        add("vaTranscode", rule.vaTranscode);
        add("frame", rule.frame);
        add("tolerance", rule.tolerance);
        add("playException", rule.playException);
        add("option", rule.option);
        add("noTranscode", rule.noTranscode);
    }
    void writeInner(const TRANSCODE_VIDEO_MAPPING_ST &rule) { writeTable(rule.pAudioTable); }

    /// The records, and how many free ones follow: all of them up to the first one's count.
    template <class Record>
    void writeTable(const Record *table)
    {
        ++depth_;
        if (!table) {
            begin("no table\n");
        } else {
            const Record *record = table;
            for (; !isEnd(*record); ++record) {
                writeRecord(*record);
                out_ << " count=" << record->count << '\n';
                writeInner(*record);
            }
            writeFree(record, record == table ? table + 1 : table + table->count + 1);
        }
        --depth_;
    }

    template <class Record>
    void writeFree(const Record *record, const Record *end)
    {
        begin("free");
        out_ << ' ' << end - record << '\n';
        for (; record < end; ++record) {
            if (isClear(*record)) continue;
            allClear_ = false;
            begin("but not clear\n");
        }
    }

    /// Whether a record holds nothing but the id -1.
    template <class Record>
    static bool isClear(const Record &record)
    {
        ProfileWriter writer;
        writer.writeRecord(record);
        return writer.out_.str().ends_with(" -1") && record.count == 0 && !hasInner(record);
    }
    static bool hasInner(const TANASCODE_FORMAT_MAPPING_ST &) { return false; }
    static bool hasInner(const TRANSCODE_AUDIO_MAPPING_ST &rule) { return rule.pFormatTable; }
    static bool hasInner(const TRANSCODE_VIDEO_MAPPING_ST &rule) { return rule.pAudioTable; }

    std::ostringstream out_;
    std::size_t depth_ = 0;
    bool allClear_ = true;
};

inline std::string describe(const TRANSCODE_DEVICE_PROFILE_ST &profile)
{
    return ProfileWriter().write(profile);
}

} // namespace vornak::test
