#include "blacklist/BlacklistDraft.h"

#include "support/FailingFileStore.h"
#include "support/QtPrinting.h"
#include "support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace quarry;
using namespace quarry::test;

namespace {

/// "a -b" is a list of the text rules a, in force, and b, switched off.
BlacklistManager listOf(const char* words)
{
    BlacklistManager list;
    std::istringstream stream(words);
    for (std::string word; stream >> word;) {
        const QString text = QString::fromStdString(word);
        const bool isOff = text.startsWith(u'-');
        list.addToBlacklist(BlacklistFilter::initWithRule(text.mid(int(isOff)), BlacklistType::Text, !isOff, false));
    }
    return list;
}

std::string wordsOf(const BlacklistManager& list)
{
    QStringList words;
    for (const BlacklistRule& rule : list.rules())
        words.append(rule.state ? *rule.rule : u'-' + *rule.rule);
    return words.join(u' ').toStdString();
}

class BlacklistDraftTest : public testing::Test {
protected:
    /// As another program saves it.
    void saveElsewhere(const char* words)
    {
        EXPECT_EQ(BlacklistStore(home, files).change([&](BlacklistManager& list) {
            list = listOf(words);
            return true;
        }),
                  QString());
    }
    /// "+c" adds a rule, "-a" removes it, "~b" switches it.
    static void edit(BlacklistDraft& draft, const QString& what)
    {
        const QString text = what.mid(1);
        if (what.startsWith(u'+'))
            draft.list().addToBlacklist(BlacklistFilter::initWithRule(text, BlacklistType::Text, true, false));
        const BlacklistFilterPtr filter = draft.list().filterAtIndex(draft.placeOf({text, BlacklistType::Text, true}));
        if (what.startsWith(u'-'))
            draft.list().removeFromBlacklist(filter);
        else if (what.startsWith(u'~'))
            draft.list().setState(false, filter);
    }

    TemporaryHome home;
    FailingFileStore files;
};

TEST_F(BlacklistDraftTest, LosesNeitherItsOwnEditsNorThoseOfOthers)
{
    struct Case {
        const char* before;
        const char* mine;
        const char* theirs;
        const char* after;
    };
    const Case cases[] = {
        {"a b", "+c", "a b", "a b c"}, // Nobody else.
        {"a b", "", "a b x", "a b x"}, // Nothing edited here.
        {"a b", "+c", "a b x", "a b x c"},
        {"a b", "+c", "a b c", "a b c"}, // Both the same.
        {"a b", "-a", "a b x", "b x"},
        {"a b", "+c", "b", "b c"},
        {"a b", "-a", "b", "b"}, // Both the same.
        {"a b", "~a", "a b x", "-a b x"},
        {"a b", "+c", "a -b", "a -b c"},
        {"a b", "~a", "-a b x", "-a b x"}, // Both the same.
        {"a b", "~a", "b", "b -a"},        // Changed here, removed there: it was wanted last.
        {"", "+c", "x", "x c"},            // No file at first.
    };
    for (const auto& [before, mine, theirs, after] : cases) {
        const std::string name = std::string(before) + " | " + mine + " | " + theirs;
        for (const bool followsFirst : {false, true}) {
            QFile::remove(home->blacklistFile());
            if (*before)
                saveElsewhere(before);
            BlacklistDraft draft(home, files);
            draft.reload();
            edit(draft, QString::fromUtf8(mine));
            const bool isChanged = std::string(theirs) != before;
            if (isChanged)
                saveElsewhere(theirs);
            if (followsFirst) {
                EXPECT_EQ(draft.follow(), isChanged) << name;
                EXPECT_EQ(wordsOf(draft.list()), after) << name;
            }
            EXPECT_EQ(draft.write(), QString()) << name;
            EXPECT_EQ(wordsOf(BlacklistManager::initWithDatabase(files, home->blacklistFile())), after) << name;
            EXPECT_EQ(wordsOf(draft.list()), after) << name;
            EXPECT_FALSE(draft.hasEdits()) << name;
        }
    }
}

} // namespace
