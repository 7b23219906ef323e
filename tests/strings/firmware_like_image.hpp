// A made-up firmware image for the string finder: string tables in single-byte codes
// (ASCII and GBK) and in handset codes, among Thumb-like machine code, compressed
// (random) data, pointer tables and fill. It records every string it stores, so a
// test can tell the strings found from the noise found.
#pragma once

#include "image/hex_text.hpp"
#include "strings/code_page.hpp"
#include "strings/string_extract.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace zevran::test {

struct FirmwareLikeImage {
    std::vector<std::uint8_t> bytes;
    std::vector<strings::StoredString> stored;  // every string, in address order
};

class FirmwareLikeMaker {
public:
    explicit FirmwareLikeMaker(std::uint32_t seed) : m_seed(seed) {}

    FirmwareLikeImage make(std::size_t size)
    {
        while (m_image.bytes.size() < size) {
            switch (next(8)) {
            case 0:
            case 1: machineCode(2048 + next(8192)); break;
            case 2:
            case 3: randomData(2048 + next(8192)); break;
            case 4: pointerTable(64 + next(256)); break;
            case 5: fill(next(2) ? 0xFF : 0x00, 256 + next(2048)); break;
            case 6: stringTable(strings::StringCodes::Single, 10 + next(60)); break;
            default: stringTable(strings::StringCodes::Handset, 10 + next(60)); break;
            }
        }
        return m_image;
    }

private:
    std::uint32_t next(std::uint32_t bound)
    {
        m_seed = m_seed * 1664525u + 1013904223u;
        return static_cast<std::uint32_t>((static_cast<std::uint64_t>(m_seed >> 8) * bound) >> 24);
    }
    void put(std::uint8_t b) { m_image.bytes.push_back(b); }
    void putHalfword(std::uint16_t h) { put(h & 0xFF), put(h >> 8); }

    // Thumb instructions with random registers and immediates, stored little-endian.
    void machineCode(std::size_t bytes)
    {
        static constexpr std::uint16_t kPatterns[] = {0x4600, 0x6800, 0x2000, 0xB500, 0xBD00, 0x1C00, 0xD000,
                                                      0x6000, 0x3000, 0x4800, 0x2800, 0xE000, 0x0000, 0x8800};
        for (std::size_t i = 0; i < bytes / 2; ++i) {
            if (next(16) == 0) {
                putHalfword(static_cast<std::uint16_t>(0xF000 | next(0x800)));  // BL, two halfwords
                putHalfword(static_cast<std::uint16_t>(0xF800 | next(0x800)));
            } else if (next(24) == 0) {
                putHalfword(0x4770);  // BX LR
            } else {
                putHalfword(static_cast<std::uint16_t>(kPatterns[next(std::size(kPatterns))] | next(0x100)));
            }
        }
    }
    void randomData(std::size_t bytes)
    {
        for (std::size_t i = 0; i < bytes; ++i) put(static_cast<std::uint8_t>(next(256)));
    }
    // Little-endian addresses into the handset's flash at 0x00100000..0x003FFFFF.
    void pointerTable(std::size_t count)
    {
        align(4, 0x00);
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t address = 0x00100000 + next(0x300000);
            for (int shift = 0; shift < 32; shift += 8) put(static_cast<std::uint8_t>(address >> shift));
        }
    }
    void fill(std::uint8_t value, std::size_t bytes) { m_image.bytes.insert(m_image.bytes.end(), bytes, value); }
    void align(std::size_t to, std::uint8_t value)
    {
        while (m_image.bytes.size() % to) put(value);
    }

    std::string englishText()
    {
        static const char* const kWords[] = {
            "Settings",    "Messages", "Call",      "Log",     "Ringtone",   "Volume",      "Alarm",
            "Clock",       "Camera",   "Pictures",  "Music",   "Games",      "Tools",       "Contacts",
            "Delete",      "Save",     "Back",      "OK",      "Cancel",     "Edit",        "Send",
            "Inbox",       "Network",  "Bluetooth", "Display", "Brightness", "Language",    "Password",
            "On",          "Off",      "Menu",      "Theme",   "Wallpaper",  "New",         "Missed calls",
            "Phone",       "Profiles", "Silent",    "Meeting", "Outdoor",    "Memory full", "Please wait",
            "Battery low", "Select",   "Options",   "Yes",     "No",         "Done",        "Error",
            "Date",        "Time",     "Calendar",  "Notes",   "Calculator", "Keypad lock", "Sent",
            "Draft"};
        static const char* const kTails[] = {"", "", "", "", "...", ":", " %d", " (%d)", "?", "!", " 1", " 2"};
        std::string text = kWords[next(std::size(kWords))];
        for (std::uint32_t extra = next(3); extra > 0; --extra)
            text += std::string(" ") + kWords[next(std::size(kWords))];
        return text + kTails[next(std::size(kTails))];
    }
    std::string chineseText()
    {
        static const char* const kWords[] = {
            "设置",     "信息",   "电话",       "短信",   "通话记录", "铃声",     "音量",     "时间", "日期", "闹钟",
            "相机",     "图片",   "音乐",       "游戏",   "工具",     "联系人",   "删除",     "保存", "返回", "确定",
            "取消",     "编辑",   "发送",       "收件箱", "网络",     "蓝牙",     "屏幕",     "亮度", "语言", "密码",
            "打开",     "关闭",   "菜单",       "主题",   "壁纸",     "未接来电", "情景模式", "静音", "会议", "户外",
            "内存已满", "请稍候", "电池电量低", "选择",   "选项",     "是",       "否",       "完成", "错误", "日历",
            "记事本",   "计算器", "键盘锁",     "已发送", "草稿",     "一"};
        std::string text = kWords[next(std::size(kWords))];
        for (std::uint32_t extra = next(2); extra > 0; --extra) text += kWords[next(std::size(kWords))];
        if (next(6) == 0) text += "：" + std::string(next(2) ? "%d" : "SMS");
        return text;
    }

    // Strings end to end, each followed by zeros up to the table's alignment.
    void stringTable(strings::StringCodes codes, std::size_t count)
    {
        align(4, 0x00);
        if (m_image.bytes.empty() || m_image.bytes.back() != 0) fill(0x00, 4);
        const std::size_t alignment = codes == strings::StringCodes::Handset ? 1 + next(2) : std::size_t{1} << next(3);
        for (std::size_t i = 0; i < count; ++i) {
            const std::string text = next(3) == 0 ? englishText() : chineseText();
            const std::string stored = encode(text, codes);
            const auto address = static_cast<std::uint32_t>(m_image.bytes.size());
            m_image.bytes.insert(m_image.bytes.end(), stored.begin(), stored.end());
            m_image.stored.push_back({address, codes, static_cast<std::uint32_t>(stored.size()), text});
            put(0x00);
            align(alignment, 0x00);
        }
    }

    // Encoded by the search's own helpers, not by the finder under test.
    static std::string encode(const std::string& text, strings::StringCodes codes)
    {
        if (codes == strings::StringCodes::Single) return strings::encodeText(text, "GBK");
        const std::string hex = image::TextToHexCodes(text);
        std::string bytes;
        for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
            bytes += static_cast<char>(image::HexByteValue(std::string_view(hex).substr(i, 2)));
        return bytes;
    }

    std::uint32_t m_seed;
    FirmwareLikeImage m_image;
};

}  // namespace zevran::test
