// The codecs that have profiles, by id.
#pragma once

namespace vornak {

constexpr int kMpeg2Video = 2;
constexpr int kMjpeg = 8;
constexpr int kMpeg4 = 13;
constexpr int kH264 = 28;
constexpr int kVc1 = 72;
constexpr int kWmv3 = 73;
constexpr int kJpeg2000 = 90;
constexpr int kDnxhd = 101;
constexpr int kVp8 = 142;
constexpr int kProres = 150;
constexpr int kWmv3Image = 153;
constexpr int kVc1Image = 154;
constexpr int kHevc = 0x8000;
constexpr int kVp9 = 0x8001;
constexpr int kAv1 = 0x8002;
constexpr int kVvc = 0x8003;
constexpr int kAac = 0x15002;
constexpr int kDts = 0x15004;
constexpr int kAacLatm = 0x15032;
constexpr int kDtsHd = 0x16001;

} // namespace vornak
