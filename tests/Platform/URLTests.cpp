#include <Platform/URL.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <unordered_set>

using namespace zelto;

namespace {

URL url(std::string_view text) {
    auto parsed = URL::parse(text);
    EXPECT_TRUE(parsed) << text;
    return parsed ? *parsed : *URL::parse("x:");
}

} // namespace

TEST(URL, IsKeptAsItWasGiven) {
    for (const auto* text : {"https://api.example.com/1/boards?x=1#top",
                             "HTTPS://Example.COM/%7euser",
                             "things:add?title=a%20b",
                             "omnifocus:///add?name=a&note=b&autosave=true",
                             "agenda://x-callback-url/create-note?title=a&text=b",
                             "bear://x-callback-url/create?title=a&text=b&tags=a,b",
                             "twodo://x-callback-url/add?task=a",
                             "http://[::1]:8080/x",
                             "http://127.0.0.1:65535/",
                             "http://a:/",
                             "http://a:0/",
                             "mid:abc%40example.com",
                             "mailto:a@b.c",
                             "x:",
                             "file:///tmp/a%20b",
                             "http://a_b/",
                             "git+ssh.v-2://a/b",
                             "https://u:p@h/",
                             "message:%3Ca@b%3E",
                             "http://a/?a?b/c",
                             "http://a?q",
                             "http://a#f"}) {
        const auto parsed = URL::parse(text);
        ASSERT_TRUE(parsed) << text;
        EXPECT_EQ(parsed->absoluteString(), text);
    }
}

TEST(URL, RefusesWhatIsNone) {
    for (const auto text : std::initializer_list<std::string_view>{"",
                                                                   " ",
                                                                   "a b:c",
                                                                   "http://a/b c",
                                                                   " http://a/",
                                                                   "http://a/ ",
                                                                   "http://a/\n",
                                                                   "http://a/\t",
                                                                   std::string_view("http://a/\0", 10),
                                                                   "http://a/\x7f",
                                                                   "http://a/\u00e9",
                                                                   "http://\u0430/",
                                                                   "http://a/\xff",
                                                                   "http://a/%",
                                                                   "http://a/%2",
                                                                   "http://a/%zz",
                                                                   "http://a/%2g",
                                                                   "a/b",
                                                                   "/a/b",
                                                                   "//a/b",
                                                                   "?a",
                                                                   "#a",
                                                                   "1a:b",
                                                                   ":a",
                                                                   "http//a",
                                                                   "http://a:65536/",
                                                                   "http://a:99999999999999999999/",
                                                                   "http://a:x/",
                                                                   "http://a:-1/",
                                                                   "http://[::1/",
                                                                   "http://::1/",
                                                                   "http://[::g]/",
                                                                   "http://[v1.a]/",
                                                                   "http://a/b#c#d",
                                                                   "http://a/<b>",
                                                                   "http://a/\"",
                                                                   "http://a/b|c",
                                                                   "http://a/\\",
                                                                   "http://a/^",
                                                                   "http://a/`",
                                                                   "http://a/{b}",
                                                                   "http://a/?q[]=1",
                                                                   "http:",
                                                                   "http://",
                                                                   "http:///a",
                                                                   "https:a",
                                                                   "http://%61/",
                                                                   "https://a%2fb/",
                                                                   "http://:80/",
                                                                   "http://u@/",
                                                                   std::string_view("http://[::\0x]/", 14),
                                                                   "http://[::1]2",
                                                                   "http://[::1]x:80/",
                                                                   "http://[::1:23]3?a",
                                                                   "http://[]/",
                                                                   "http://[::1%25eth0]/",
                                                                   "http://[0000:0000:0000:0000:0000:0000:"
                                                                   "0000:0000:0000:0000]/",
                                                                   "https://a@b@c/",
                                                                   "https://u:p@@c/",
                                                                   "x://a:b@c@d:80/"}) {
        EXPECT_FALSE(URL::parse(text)) << text;
    }
}

TEST(URL, GivesItsParts) {
    const auto whole = url("HTTPS://u:p@Example.COM:8443/a%20b/c.tar.gz?x=1&y=%26#frag%20ment");
    EXPECT_EQ(whole.scheme(), "https");
    EXPECT_EQ(whole.userInfo(), "u:p");
    EXPECT_EQ(whole.host(), "example.com");
    EXPECT_EQ(whole.port(), 8443);
    EXPECT_EQ(whole.path(), "/a b/c.tar.gz");
    EXPECT_EQ(whole.percentEncodedPath(), "/a%20b/c.tar.gz");
    EXPECT_EQ(whole.query(), "x=1&y=%26");
    EXPECT_EQ(whole.fragment(), "frag%20ment");
    EXPECT_EQ(whole.lastPathComponent(), "c.tar.gz");
    EXPECT_EQ(whole.pathExtension(), "gz");
}

TEST(URL, DistinguishesAbsentFromEmpty) {
    const auto bare = url("things:add");
    EXPECT_FALSE(bare.hasAuthority());
    EXPECT_EQ(bare.userInfo(), std::nullopt);
    EXPECT_EQ(bare.host(), "");
    EXPECT_EQ(bare.port(), std::nullopt);
    EXPECT_EQ(bare.path(), "add");
    EXPECT_EQ(bare.query(), std::nullopt);
    EXPECT_EQ(bare.fragment(), std::nullopt);
    const auto empty = url("omnifocus:///add?#");
    EXPECT_TRUE(empty.hasAuthority());
    EXPECT_EQ(empty.host(), "");
    EXPECT_EQ(empty.query(), "");
    EXPECT_EQ(empty.fragment(), "");
    EXPECT_EQ(url("http://a:/").port(), std::nullopt);
}

TEST(URL, GivesAnIPv6AddressWithoutBrackets) {
    const auto loopback = url("http://u@[::1]:80/x");
    EXPECT_EQ(loopback.host(), "::1");
    EXPECT_EQ(loopback.port(), 80);
}

TEST(URL, IsNotFooledAboutItsHost) {
    EXPECT_EQ(url("https://good.example/@evil.example").host(), "good.example");
    EXPECT_EQ(url("https://good.example?@evil.example").host(), "good.example");
    EXPECT_EQ(url("https://good.example#@evil.example").host(), "good.example");
    EXPECT_EQ(url("https://127.0.0.1a/").host(), "127.0.0.1a");
    EXPECT_EQ(url("https://good.example:80@evil.example/").host(), "evil.example");
}

TEST(URL, NamesItsLastPathComponentAndExtension) {
    struct Row {
        const char* text;
        const char* component;
        const char* extension;
    };

    for (const auto& row : std::to_array<Row>({{"http://a", "", ""},
                                               {"http://a/", "", ""},
                                               {"http://a/b/", "b", ""},
                                               {"http://a/b/c.PDF", "c.PDF", "PDF"},
                                               {"http://a/.bashrc", ".bashrc", ""},
                                               {"http://a/c.", "c.", ""},
                                               {"http://a/%D0%B6.txt?x=y.z", "\u0436.txt", "txt"},
                                               {"http://a/%FF.txt", "%FF.txt", "txt"},
                                               {"http://a/b%2Fc", "b/c", ""},
                                               {"x:a.b", "a.b", "b"}})) {
        EXPECT_EQ(url(row.text).lastPathComponent(), row.component) << row.text;
        EXPECT_EQ(url(row.text).pathExtension(), row.extension) << row.text;
    }
}

TEST(URL, OfAFileGivesThePathBack) {
    for (const std::string path : {"/tmp/a b.txt", "/", "/a%20b", "/\u0436/\U0001F600?#[]", "/\xff\xfe",
                                   "/a;b|c\\d\n", "//a", "/a/../b"}) {
        const auto file = URL::file(path);
        EXPECT_TRUE(file.isFile());
        EXPECT_EQ(file.filePath(), path);
        EXPECT_EQ(URL::parse(file.absoluteString()), file) << file.absoluteString();
    }
    EXPECT_EQ(URL::file("/tmp/a b.txt").absoluteString(), "file:///tmp/a%20b.txt");
    EXPECT_EQ(URL::file("a b").filePath(), std::filesystem::current_path() / "a b");
    EXPECT_EQ(URL::file("").absoluteString(), "file:///");
}

TEST(URL, HasAFilePathOnlyForAFileOfThisMachine) {
    EXPECT_EQ(url("file://localhost/a").filePath(), "/a");
    EXPECT_EQ(url("FILE:///a").filePath(), "/a");
    EXPECT_EQ(url("file:/a").filePath(), "/a");
    EXPECT_EQ(url("file://other/a").filePath(), "");
    EXPECT_EQ(url("file:///a%00b").filePath(), "");
    EXPECT_EQ(url("http://localhost/a").filePath(), "");
}

TEST(URL, ResolvesReferencesAsTheStandardsExamplesSay) {
    const auto base = url("http://a/b/c/d;p?q");

    struct Row {
        const char* reference;
        const char* target;
    };

    for (const auto& row : std::to_array<Row>({{"g:h", "g:h"},
                                               {"g", "http://a/b/c/g"},
                                               {"./g", "http://a/b/c/g"},
                                               {"g/", "http://a/b/c/g/"},
                                               {"/g", "http://a/g"},
                                               {"//g", "http://g"},
                                               {"?y", "http://a/b/c/d;p?y"},
                                               {"g?y", "http://a/b/c/g?y"},
                                               {"#s", "http://a/b/c/d;p?q#s"},
                                               {"g#s", "http://a/b/c/g#s"},
                                               {"g?y#s", "http://a/b/c/g?y#s"},
                                               {";x", "http://a/b/c/;x"},
                                               {"g;x", "http://a/b/c/g;x"},
                                               {"g;x?y#s", "http://a/b/c/g;x?y#s"},
                                               {"", "http://a/b/c/d;p?q"},
                                               {".", "http://a/b/c/"},
                                               {"./", "http://a/b/c/"},
                                               {"..", "http://a/b/"},
                                               {"../", "http://a/b/"},
                                               {"../g", "http://a/b/g"},
                                               {"../..", "http://a/"},
                                               {"../../", "http://a/"},
                                               {"../../g", "http://a/g"},
                                               {"../../../g", "http://a/g"},
                                               {"../../../../g", "http://a/g"},
                                               {"/./g", "http://a/g"},
                                               {"/../g", "http://a/g"},
                                               {"g.", "http://a/b/c/g."},
                                               {".g", "http://a/b/c/.g"},
                                               {"g..", "http://a/b/c/g.."},
                                               {"..g", "http://a/b/c/..g"},
                                               {"./../g", "http://a/b/g"},
                                               {"./g/.", "http://a/b/c/g/"},
                                               {"g/./h", "http://a/b/c/g/h"},
                                               {"g/../h", "http://a/b/c/h"},
                                               {"g;x=1/./y", "http://a/b/c/g;x=1/y"},
                                               {"g;x=1/../y", "http://a/b/c/y"},
                                               {"g?y/./x", "http://a/b/c/g?y/./x"},
                                               {"g?y/../x", "http://a/b/c/g?y/../x"},
                                               {"g#s/./x", "http://a/b/c/g#s/./x"},
                                               {"g#s/../x", "http://a/b/c/g#s/../x"},
                                               {"http:g", nullptr},
                                               {"a b", nullptr},
                                               {"//a:65536", nullptr}})) {
        const auto target = base.resolving(row.reference);
        if (row.target == nullptr) {
            EXPECT_EQ(target, std::nullopt) << row.reference;
        } else {
            EXPECT_EQ(target, URL::parse(row.target)) << row.reference;
        }
    }
    EXPECT_EQ(url("http://a").resolving("g"), URL::parse("http://a/g"));
    EXPECT_EQ(url("x:/a").resolving(".//b"), URL::parse("x:/.//b"));
    EXPECT_EQ(url("things:add").resolving("show?id=1"), URL::parse("things:show?id=1"));
}

TEST(URL, AppendsAPathComponentThatCannotEscape) {
    const auto base = url("https://a/v1?x=1#f");
    EXPECT_EQ(base.appendingPathComponent("b").absoluteString(), "https://a/v1/b?x=1#f");
    EXPECT_EQ(url("https://a").appendingPathComponent("b").absoluteString(), "https://a/b");
    EXPECT_EQ(url("https://a/").appendingPathComponent("b").absoluteString(), "https://a/b");
    for (const std::string foreign : {"a/b", "..", ".", "a?b", "a#b", "\u0436 %", ";", "", "\xff"}) {
        const auto longer = base.appendingPathComponent(foreign);
        EXPECT_EQ(URL::parse(longer.absoluteString()), longer) << foreign;
        EXPECT_EQ(longer.query(), "x=1");
        EXPECT_EQ(std::ranges::count(longer.percentEncodedPath(), '/'), 2) << foreign;
    }
    EXPECT_EQ(base.appendingPathComponent("a/b?").lastPathComponent(), "a/b?");
}

TEST(URL, MayBeHuge) {
    const std::string text =
        "agenda://x-callback-url/open-project?title=" + std::string(50'000'000, 'a') + "%20";
    const auto parsed = URL::parse(text);
    ASSERT_TRUE(parsed);
    EXPECT_EQ(parsed->query()->size(), 50'000'009);
    EXPECT_FALSE(URL::parse(text + "%"));
}

TEST(URL, IsARegularValue) {
    const auto a = url("http://a/");
    const auto b = url("http://b/");
    EXPECT_LT(a, b);
    EXPECT_NE(a, b);
    EXPECT_EQ(a, url("http://a/"));
    EXPECT_EQ((std::unordered_set<URL>{a, b, a}.size()), 2u);
}
