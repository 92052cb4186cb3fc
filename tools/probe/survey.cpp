#include "tools/probe/survey.h"

#include "tools/probe/frame_rate.h"
#include "tools/probe/media_file.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <iterator>
#include <span>
#include <string_view>

extern "C" {
#include <libavformat/avformat.h>
}

namespace vornak::tool {
namespace {

bool isCover(const AVStream &stream)
{
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

bool isVideo(const AVStream &stream)
{
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !isCover(stream);
}

bool isMatroska(const AVFormatContext &context)
{
    return std::string_view(context.iformat->name) == "matroska,webm";
}

bool isMp4(const AVFormatContext &context)
{
    return std::string_view(context.iformat->name).starts_with("mov,");
}

/// Whether a format's packets are of one size and have often little in them.
bool fillsUp(const AVFormatContext &context)
{
    const std::string_view format = context.iformat->name;
    return format == "mpegts" || format == "asf";
}

std::span<AVStream *> streamsOf(const AVFormatContext &context)
{
    return {context.streams, context.nb_streams};
}

std::int64_t rateOf(double bytes, double seconds)
{
    return seconds > 0 ? static_cast<std::int64_t>(bytes * 8 / seconds) : 0;
}

// What the header says

/// A file that is nothing but the frames of one stream says nowhere how long it is.
bool isBareStream(const Survey &survey)
{
    return survey.played.size() == 1 && survey.duration <= 0 && guessesDuration(survey.context);
}

/// A duration made from bit rates holds for steady ones: those of sound, and of pictures whose
/// header has it (DV).
double statedDuration(const Survey &survey)
{
    bool isSteady = true;
    for (std::size_t i = 0; i < survey.rates.size(); ++i)
        isSteady = isSteady &&
                   (survey.rates[i].isVideo ? survey.file.headerBitrate(survey.played[i]->index) > 0
                                            : survey.rates[i].named > 0);
    const std::int64_t duration = survey.context.duration;
    if (duration <= 0 || (guessesDuration(survey.context) && !isSteady)) return 0;
    return static_cast<double>(duration) / AV_TIME_BASE;
}

/// Of the file without its covers and fonts.
double playedBytes(const Survey &survey)
{
    std::int64_t bytes = survey.file.size();
    for (const AVStream *stream : streamsOf(survey.context))
        if (isCover(*stream))
            bytes -= stream->attached_pic.size;
        else if (stream->codecpar->codec_type == AVMEDIA_TYPE_ATTACHMENT)
            bytes -= stream->codecpar->extradata_size;
    return static_cast<double>(bytes);
}

/// Takes the rates of an MP4 file's streams from its tables: what its header says was made from
/// durations that may be wrong, or for a part of the file. False where the tables are of a part
/// themselves, since the rest is in fragments.
bool takeTables(Survey &survey)
{
    StreamTable sum;
    for (AVStream *stream : streamsOf(survey.context)) {
        const StreamTable table = readTable(*stream);
        sum.bytes += table.bytes;
        sum.seconds = std::max(sum.seconds, table.seconds);
        const auto at = std::ranges::find(survey.played, stream) - survey.played.begin();
        if (at == std::ssize(survey.played)) continue;
        survey.rates[static_cast<std::size_t>(at)].header =
            rateOf(static_cast<double>(table.bytes), table.seconds);
    }
    const bool isAllTime = sum.seconds > 0.9 * survey.duration;
    const bool isAllOfFile = static_cast<double>(sum.bytes) > 0.9 * playedBytes(survey);
    if (survey.duration <= 0 || (isAllOfFile && !isAllTime)) survey.duration = sum.seconds;
    return isAllTime || isAllOfFile;
}

/// Forgets what the header says of bit rates where it can't be right.
void checkHeader(Survey &survey)
{
    const bool isRight = isMp4(survey.context)
                             ? takeTables(survey)
                             : fitFile(survey.rates, playedBytes(survey), survey.duration);
    if (isRight) return;
    for (StreamRate &rate : survey.rates) rate.header = 0;
}

// What is to be read

/// Whether two rates differ by no more than rounding, or a duration that is a frame too short.
bool areNear(std::int64_t one, std::int64_t other)
{
    return std::abs(one - other) * 50 <= other;
}

/// An MP3 stream whose frames may all name the rate of the first, which libavcodec hands on.
bool mayBeSteadyMp3(const AVStream &stream, const StreamRate &rate)
{
    const AVCodecParameters &parameters = *stream.codecpar;
    return parameters.codec_id == AV_CODEC_ID_MP3 && rate.named <= 0 &&
           (rate.header <= 0 || areNear(rate.header, parameters.bit_rate));
}

bool hasSteadyMp3(const Survey &survey)
{
    for (std::size_t i = 0; i < survey.rates.size(); ++i)
        if (mayBeSteadyMp3(*survey.played[i], survey.rates[i])) return true;
    return false;
}

std::ptrdiff_t countOpenRates(const Survey &survey)
{
    return std::ranges::count_if(survey.rates,
                                 [](const StreamRate &rate) { return rate.stated() <= 0; });
}

bool needsRates(const Survey &survey)
{
    return isBareStream(survey) || countOpenRates(survey) > 0 || hasSteadyMp3(survey);
}

bool needsTimes(const Survey &survey)
{
    return firstVideo(survey.played) && (isMatroska(survey.context) || isMp4(survey.context));
}

SampleSize sizeOfStart(const Survey &survey)
{
    constexpr double kQuicklyRead = 1'000'000;

    const std::int64_t most = firstVideo(survey.played) ? 4'000'000 : 250'000;
    if (!needsRates(survey)) return {100, most}; // some seconds of pictures
    if (isBareStream(survey)) return {kAnyNumber, most};
    if (playedBytes(survey) <= kQuicklyRead) return {kAnyNumber, 4'000'000};
    if (fillsUp(survey.context)) return {kAnyNumber, 1'000'000};
    return {250, most}; // of which libavformat has looked at the greater part already
}

/// Bytes at a place: some seconds of sound, or the pictures from one key frame to the next.
std::int64_t sizeOfPlace(const Survey &survey)
{
    if (!isBareStream(survey)) return 250'000;
    return firstVideo(survey.played) ? 500'000 : 32'000;
}

/// What isn't played counts nowhere, nor does sound where only the pictures' times are asked for.
void passOver(const Survey &survey, bool andSound)
{
    for (AVStream *stream : streamsOf(survey.context))
        if (andSound ? !isVideo(*stream) : std::ranges::count(survey.played, stream) == 0)
            stream->discard = AVDISCARD_ALL;
}

// What comes of it

/// Behind the end of a file that was cut, there are no places.
bool isCut(const Survey &survey)
{
    return !survey.places.isComplete && survey.places.bytes() > 0 &&
           !isSoughtByBytes(survey.context) && !survey.file.isAtLimit();
}

std::int64_t endOfStart(const Survey &survey)
{
    if (const AVStream *video = firstVideo(survey.played)) return survey.start.of(*video).end;
    std::int64_t end = 0;
    for (const SampledStream &sound : survey.start.streams) end = std::max(end, sound.end);
    return end;
}

/// The played bytes without what broadcasts and ASF fill up their packets with, as the start shows
/// it up to its last picture, since much of the next one may have been read. Other containers add
/// next to nothing.
double payloadBytes(const Survey &survey)
{
    const double read = static_cast<double>(endOfStart(survey) - survey.file.dataStart());
    const double bytes = playedBytes(survey);
    if (!fillsUp(survey.context) || read <= 0) return bytes;
    return bytes * std::min(1.0, static_cast<double>(survey.start.bytes()) / read);
}

/// How far what was seen may be from the whole: the start alone, of a song that begins with
/// silence, says little.
int toleranceOf(const Survey &survey)
{
    return survey.places.isComplete ? 2 : 10;
}

WholeRate wholeRate(const Survey &survey, double least, double most)
{
    // all of a small file was seen, so its size has nothing left to tell
    if (survey.start.isComplete || isCut(survey)) return {};
    return {rateOf(payloadBytes(survey), survey.duration), least, most};
}

void takeRates(Survey &survey)
{
    for (std::size_t i = 0; i < survey.rates.size(); ++i) {
        const SampledStream &places = survey.places.of(*survey.played[i]);
        const SampledStream &like =
            places.seconds > 0 ? places : survey.start.of(*survey.played[i]);
        survey.rates[i].sampled = rateOf(static_cast<double>(like.bytes), like.seconds);
    }
}

/// Where all frames of an MP3 stream name the same rate, that is said often enough.
void nameSteadyMp3(Survey &survey)
{
    for (std::size_t i = 0; i < survey.rates.size(); ++i) {
        const AVStream &stream = *survey.played[i];
        const unsigned codes =
            survey.start.of(stream).rateCodes | survey.places.of(stream).rateCodes;
        if (mayBeSteadyMp3(stream, survey.rates[i]) && std::has_single_bit(codes))
            survey.rates[i].named = stream.codecpar->bit_rate;
    }
}

/// Whether the pictures of an MP4 file are decoded at no steady pace. Mostly they aren't shown at
/// one either; but some muxers make the times of decoding up.
bool hasUnsteadyTable(const Survey &survey)
{
    constexpr int kMostTimes = 100'000; // about an hour

    if (!isMp4(survey.context)) return false;
    AVStream *video = firstVideo(survey.played);
    PictureTimes times;
    const int count = std::min(avformat_index_get_entries_count(video), kMostTimes);
    times.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) times.push_back(avformat_index_get_entry(video, i)->timestamp);
    return isVariableFrameRate({&times, 1});
}

/// Whether the start leaves anything open. Films and songs often begin with silence, and behind
/// frames of one rate others may follow. Where all has much less than the start, it may be cut.
bool needsPlaces(const Survey &survey)
{
    if (survey.start.isComplete) return false;
    if (needsTimes(survey) && hasUnsteadyTable(survey)) return true;
    return isBareStream(survey) || countOpenRates(survey) > 1 ||
           (countOpenRates(survey) == 1 &&
            (hasSteadyMp3(survey) || !isBelievable(wholeRate(survey, 0.8, 2), survey.rates)));
}

double secondsOf(const PacketSample &sample, const std::vector<AVStream *> &played)
{
    double longest = 0;
    for (const AVStream *stream : played) longest = std::max(longest, sample.of(*stream).seconds);
    return longest;
}

/// The start counts as it is, what follows lasts as long as the places say.
double countedDuration(const Survey &survey)
{
    const double first = secondsOf(survey.start, survey.played);
    const double seconds = secondsOf(survey.places, survey.played);
    const PacketSample &like = seconds > 0 ? survey.places : survey.start;
    const double rest = survey.start.isComplete
                            ? 0
                            : payloadBytes(survey) - static_cast<double>(survey.start.bytes());
    if (rest <= 0 || like.bytes() <= 0) return first;
    return first + (seconds > 0 ? seconds : first) * rest / static_cast<double>(like.bytes());
}

/// What the header says, unless that is less than was seen or far more than there can be.
double believedDuration(const Survey &survey)
{
    const double counted = countedDuration(survey);
    const double shortest = 0.8 * secondsOf(survey.start, survey.played);
    const bool sawAll = survey.start.isComplete || isCut(survey);
    const double longest = counted * (sawAll ? 1.2 : toleranceOf(survey));
    const bool isPlausible =
        survey.duration > 0 && survey.duration >= shortest && survey.duration <= longest;
    return isPlausible || counted <= 0 ? survey.duration : counted;
}

/// Where there are no places, what follows the start is all that can be had.
PacketSample takePlaces(const Survey &survey)
{
    constexpr SampleSize kReadOn = {kAnyNumber, 16'000'000};

    const double counted = isBareStream(survey) ? static_cast<double>(survey.start.bytes()) : 0;
    const Stretch stretch{static_cast<std::int64_t>(playedBytes(survey) - counted),
                          believedDuration(survey)};
    PacketSample places = samplePlaces(survey.context, stretch, sizeOfPlace(survey));
    if (!places.streams.empty()) return places;
    places = samplePackets(survey.context, kReadOn);
    places.isComplete = survey.file.isAtLimit(); // or it ends sooner than it says
    return places;
}

void takeSamples(Survey &survey)
{
    constexpr std::int64_t kMostRead = 32'000'000;

    const bool rates = needsRates(survey);
    if (!rates && !needsTimes(survey)) return;
    passOver(survey, !rates);
    survey.file.limitReading(kMostRead);
    survey.start = samplePackets(survey.context, sizeOfStart(survey));
    takeRates(survey);
    if (needsPlaces(survey)) {
        survey.file.limitReading(kMostRead);
        survey.places = takePlaces(survey);
        takeRates(survey);
        if (isBareStream(survey)) // all that was counted counts, the start too
            survey.rates.front().sampled = rateOf(payloadBytes(survey), countedDuration(survey));
    }
    nameSteadyMp3(survey);
}

} // namespace

std::vector<AVStream *> playedStreams(const AVFormatContext &context)
{
    std::vector<AVStream *> played;
    for (AVStream *stream : streamsOf(context))
        if (isVideo(*stream) || stream->codecpar->codec_type == AVMEDIA_TYPE_AUDIO)
            played.push_back(stream);
    return played;
}

AVStream *firstVideo(const std::vector<AVStream *> &played)
{
    for (AVStream *stream : played)
        if (isVideo(*stream)) return stream;
    return nullptr;
}

Survey surveyFile(MediaFile &file)
{
    Survey survey{file, *file.context(), playedStreams(*file.context()), {}, 0, {}, {}};
    for (const AVStream *stream : survey.played) survey.rates.push_back(statedRate(file, *stream));
    survey.duration = statedDuration(survey);
    checkHeader(survey);
    const bool hadOpenRates = needsRates(survey);
    takeSamples(survey);
    if (hadOpenRates) survey.duration = believedDuration(survey);
    const int tolerance = toleranceOf(survey);
    // where bytes are sought, a cut song has all its places
    const bool maySeemWhole = isSoughtByBytes(survey.context) && !firstVideo(survey.played);
    settleBitRates(survey.rates,
                   wholeRate(survey, maySeemWhole ? 0.8 : 1.0 / tolerance, tolerance));
    return survey;
}

bool hasVariableFrameRate(const Survey &survey)
{
    if (!needsTimes(survey)) return false;
    std::vector<PictureTimes> runs = survey.start.of(*firstVideo(survey.played)).times;
    for (const PictureTimes &times : survey.places.of(*firstVideo(survey.played)).times)
        runs.push_back(times);
    return isVariableFrameRate(runs);
}

} // namespace vornak::tool
