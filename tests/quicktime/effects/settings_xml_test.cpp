#include "platform/quicktime/effects/settings_xml.h"

#include "tests/quicktime/effects/effect_test.h"

namespace {

using namespace effect_test;

/// The value of a parameter in a description of the effect with these elements.
std::string Value(const char* type, const char* key, const std::string& elements) {
    const auto settings =
        qt::EffectSettingsFromXml("<effect type='" + std::string(type) + "'>" + elements + "</effect>");
    if (!settings) return "no effect";
    return settings->values.TextAt(settings->values.Find(key).value());
}

TEST(EffectXml, IsReadable) {
    EXPECT_EQ(qt::EffectSettingsToXml(Settings("iris", {{"shape", "diamond"}, {"percent", "12.5"}})),
              R"(<?xml version="1.0"?>
<!-- Iris: two images, A and B -->
<effect type="iris">
  <!-- Shape: one of circle, rectangle, diamond, cross, default circle -->
  <shape>diamond</shape>
  <!-- Way from A to B: 0 to 100 percent, default 50 -->
  <percent>12.5</percent>
  <!-- Softness of the border: 0 to 100 percent, default 0 -->
  <softness>0</softness>
  <!-- Closes: 0 or 1, default 0 -->
  <closing>0</closing>
</effect>
)");
}

TEST(EffectXml, ValuesAreBroughtIntoRangeAndNonsenseIsTheDefault) {
    const auto radius = [](const std::string& text) {
        return Value("blur", "radius", "<radius>" + text + "</radius>");
    };
    EXPECT_EQ(radius(" 7.5\r\n"), "7.5");
    EXPECT_EQ(radius("+7"), "7");
    EXPECT_EQ(radius("1e1"), "10");
    for (const char* low : {"-3", "-1e999", "1e-999"}) EXPECT_EQ(radius(low), "0") << low;
    for (const char* high : {"100.1", "1e999"}) EXPECT_EQ(radius(high), "100") << high;
    for (const char* nonsense : {"nan", "5 pixels", "5,5", "", "0x10", "<b>9</b>"})
        EXPECT_EQ(radius(nonsense), "4") << nonsense;
    EXPECT_EQ(radius(std::string(64, '1')), "4");
    EXPECT_EQ(Value("post", "levels", "<levels>7.6</levels>"), "8");
    EXPECT_EQ(Value("ckey", "key", "<key>#ABCDEF</key>"), "#abcdef");
    EXPECT_EQ(Value("ckey", "key", "<key>#abc</key>"), "#00ff00");
    EXPECT_EQ(Value("iris", "shape", "<shape>Circles</shape>"), "circle");
    EXPECT_EQ(Value("edge", "colour", "<colour>yes</colour>"), "1");
    EXPECT_EQ(Value("edge", "colour", "<colour>2</colour>"), "0");
}

TEST(EffectXml, WhatIsUnknownIsPassedOver) {
    EXPECT_EQ(Value("blur", "radius", "<more><radius>9</radius></more><radius>7</radius><size/>"), "7");
    EXPECT_EQ(Value("blur", "radius", "<radius>9</radius><radius unit='x'>7</radius>"), "7")
        << "the last counts";
    EXPECT_EQ(Value("blur", "radius", "<radius>1<!-- 5 -->2</radius>"), "12");
    EXPECT_EQ(Value("blur", "radius", "<radius>&#49;<![CDATA[3]]></radius>"), "13");
    EXPECT_EQ(Value("zzzz", "radius", ""), "no effect");
    EXPECT_FALSE(qt::EffectSettingsFromXml("<other type='blur'/>"));
    EXPECT_FALSE(qt::EffectSettingsFromXml("<a><effect type='blur'/></a>"));
    EXPECT_FALSE(qt::EffectSettingsFromXml("<effect/>"));
}

TEST(EffectXml, RefusesWhatIsNoXmlAndHostileXml) {
    const std::string good = "<effect type='blur'><radius>9</radius></effect>";
    ASSERT_TRUE(qt::EffectSettingsFromXml(good));
    for (std::size_t size = 0; size < good.size(); ++size)
        EXPECT_FALSE(qt::EffectSettingsFromXml(good.substr(0, size))) << size;
    EXPECT_FALSE(qt::EffectSettingsFromXml(good + good));
    EXPECT_FALSE(qt::EffectSettingsFromXml("<effect type='blur'><radius>\xFF</radius></effect>"));
    EXPECT_FALSE(qt::EffectSettingsFromXml("<effect type='blur'><radius>&a;</radius></effect>"));
    // A document type can declare entities that grow, or that are files.
    EXPECT_FALSE(qt::EffectSettingsFromXml("<!DOCTYPE effect>" + good));
    EXPECT_FALSE(qt::EffectSettingsFromXml("<!DOCTYPE effect [<!ENTITY a '9'>]>"
                                           "<effect type='blur'><radius>&a;</radius></effect>"));
    EXPECT_FALSE(qt::EffectSettingsFromXml("<!DOCTYPE effect SYSTEM 'file:///etc/passwd'>" + good));
    const auto nested = [](std::size_t depth) {
        std::string xml = "<effect type='blur'>";
        for (std::size_t i = 0; i < depth; ++i) xml += "<a>";
        for (std::size_t i = 0; i < depth; ++i) xml += "</a>";
        return xml + "</effect>";
    };
    EXPECT_TRUE(qt::EffectSettingsFromXml(nested(60)));
    EXPECT_FALSE(qt::EffectSettingsFromXml(nested(1'000'000)));
    const std::string filler = "<!--" + std::string(8'000'000, 'x') + "-->";
    EXPECT_TRUE(qt::EffectSettingsFromXml(filler + good));
    EXPECT_FALSE(qt::EffectSettingsFromXml(std::string(8'000'000, '<')));
}

} // namespace
