#include "platform/backends/curl/cookies.h"

#include <gtest/gtest.h>

namespace velmora::platform::http {

namespace {

constexpr std::time_t now = 1000;

std::optional<std::string> lineFor(std::string_view name, std::string_view data) {
    return jarLine(
        partsOf("http://host/a/b"), name, data, now,
        [](const std::string &date) { return date == "later" ? 2000 : -1; });
}

std::string sent(const std::string &line, std::string_view address) {
    return cookiesFor({line}, partsOf(address), "", now);
}

TEST(JarLine, TakesThePairFromTheNameOrTheData) {
    EXPECT_EQ(lineFor("a", "b"), "host\tFALSE\t/\tFALSE\t0\ta\tb");
    EXPECT_EQ(lineFor("", "a=b=c"), "host\tFALSE\t/\tFALSE\t0\ta\tb=c");
    EXPECT_EQ(lineFor("", " a = b "), "host\tFALSE\t/\tFALSE\t0\ta\tb");
}

TEST(JarLine, ReadsTheAttributes) {
    EXPECT_EQ(lineFor("a", "b; Path=/x; SECURE; expires=later; other"),
              "host\tFALSE\t/x\tTRUE\t2000\ta\tb");
    EXPECT_EQ(lineFor("a", "b; max-age=60"), "host\tFALSE\t/\tFALSE\t1060\ta\tb");
    EXPECT_EQ(lineFor("a", "b; max-age=-5000"), "host\tFALSE\t/\tFALSE\t1\ta\tb");
    EXPECT_EQ(lineFor("a", "b; path=x; expires=never"), "host\tFALSE\t/\tFALSE\t0\ta\tb");
}

TEST(JarLine, RefusesWhatIsNoCookie) {
    EXPECT_EQ(lineFor("", "no pair"), std::nullopt);
    EXPECT_EQ(lineFor("", "=b"), std::nullopt);
    EXPECT_EQ(lineFor("a=b", "c"), std::nullopt);
    EXPECT_EQ(lineFor("a", "b\tc"), std::nullopt);
    EXPECT_EQ(lineFor("a", "b\r\nX: y"), std::nullopt);
    EXPECT_EQ(jarLine(AddressParts(), "a", "b", now, nullptr), std::nullopt);
}

TEST(CookiesFor, SendsToTheHostAndWhatLiesBelowIt) {
    const std::string alone = "host\tFALSE\t/\tFALSE\t0\ta\tb";
    EXPECT_EQ(sent(alone, "http://HOST/x"), "a=b");
    EXPECT_EQ(sent(alone, "http://sub.host/x"), "");
    const std::string wide = ".host\tTRUE\t/\tFALSE\t0\ta\tb";
    EXPECT_EQ(sent(wide, "http://sub.host/"), "a=b");
    EXPECT_EQ(sent(wide, "http://subhost/"), "");
}

TEST(CookiesFor, SendsToThePathAndWhatLiesBelowIt) {
    const std::string line = "host\tFALSE\t/x\tFALSE\t0\ta\tb";
    EXPECT_EQ(sent(line, "http://host/x"), "a=b");
    EXPECT_EQ(sent(line, "http://host/x/y"), "a=b");
    EXPECT_EQ(sent(line, "http://host/xy"), "");
    EXPECT_EQ(sent(line, "http://host/y/x"), "");
    EXPECT_EQ(sent(line, "http://host/"), "");
}

TEST(CookiesFor, KeepsSecretsAndEndsInTime) {
    EXPECT_EQ(sent("host\tFALSE\t/\tTRUE\t0\ta\tb", "http://host/"), "");
    EXPECT_EQ(sent("host\tFALSE\t/\tTRUE\t0\ta\tb", "https://host/"), "a=b");
    EXPECT_EQ(sent("host\tFALSE\t/\tFALSE\t1000\ta\tb", "http://host/"), "");
    EXPECT_EQ(sent("host\tFALSE\t/\tFALSE\t1001\ta\tb", "http://host/"), "a=b");
    EXPECT_EQ(sent("#HttpOnly_host\tFALSE\t/\tFALSE\t0\ta\tb", "http://host/"), "a=b");
}

TEST(CookiesFor, JoinsAllOrPicksOne) {
    const std::vector<std::string> lines = {"host\tFALSE\t/\tFALSE\t0\ta\t1",
                                            "host\tFALSE\t/\tFALSE\t0\tb\t", "damaged"};
    EXPECT_EQ(cookiesFor(lines, partsOf("http://host/"), "", now), "a=1; b=");
    EXPECT_EQ(cookiesFor(lines, partsOf("http://host/"), "a", now), "a=1");
    EXPECT_EQ(cookiesFor(lines, partsOf("http://host/"), "c", now), "");
}

} // namespace

} // namespace velmora::platform::http
