#include "core/commands/command.h"
#include "core/commands/undohistory.h"
#include "support/printers.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace fb::core;

namespace {

// Adds its amount to a counter, so the tests can see what was applied and undone.
class AddCommand final : public Command
{
public:
    AddCommand(int &total, int amount, QString label = u"Add"_s)
        : m_total(total)
        , m_amount(amount)
        , m_label(std::move(label))
    {}
    void redo() override { m_total += m_amount; }
    void undo() override { m_total -= m_amount; }
    QString label() const override { return m_label; }

private:
    int &m_total;
    int m_amount;
    QString m_label;
};

} // namespace

TEST(UndoHistory, PushAppliesAndUndoRevertsTheNewestStep)
{
    int total = 0;
    UndoHistory history;
    history.push(std::make_unique<AddCommand>(total, 1, u"one"_s));
    history.push(std::make_unique<AddCommand>(total, 10, u"ten"_s));
    EXPECT_EQ(total, 11);
    EXPECT_EQ(history.undoLabel(), u"ten"_s);
    history.undo();
    EXPECT_EQ(total, 1);
    EXPECT_EQ(history.undoLabel(), u"one"_s);
    history.undo();
    EXPECT_FALSE(history.canUndo());
    history.undo();
    EXPECT_EQ(total, 0);
}

TEST(UndoHistory, AGroupCollectsItsCommandsIntoOneStep)
{
    int total = 0;
    UndoHistory history;
    history.push(std::make_unique<AddCommand>(total, 1));
    history.beginGroup(u"MCP: add"_s);
    history.push(std::make_unique<AddCommand>(total, 10));
    history.beginGroup(u"inner"_s);
    history.push(std::make_unique<AddCommand>(total, 100));
    history.endGroup();
    EXPECT_TRUE(history.isGroupOpen());
    EXPECT_FALSE(history.canUndo());
    history.undo();
    EXPECT_EQ(total, 111);
    history.endGroup();

    EXPECT_EQ(history.count(), 2u);
    EXPECT_EQ(history.undoLabel(), u"MCP: add"_s);
    history.undo();
    EXPECT_EQ(total, 1);
}

TEST(UndoHistory, AnEmptyGroupLeavesNoStep)
{
    UndoHistory history;
    history.beginGroup(u"MCP: nothing"_s);
    history.endGroup();
    EXPECT_EQ(history.count(), 0u);
    EXPECT_FALSE(history.canUndo());
}

TEST(UndoHistory, TheSavedMarkerFollowsTheStepsOnDisk)
{
    int total = 0;
    UndoHistory history;
    EXPECT_TRUE(history.isSaved());
    history.push(std::make_unique<AddCommand>(total, 1));
    EXPECT_FALSE(history.isSaved());
    history.markSaved();
    EXPECT_TRUE(history.isSaved());
    history.push(std::make_unique<AddCommand>(total, 2));
    history.undo();
    EXPECT_TRUE(history.isSaved());
    // Undoing the saved step leaves the saved state behind for good.
    history.undo();
    EXPECT_FALSE(history.isSaved());
    history.push(std::make_unique<AddCommand>(total, 1));
    EXPECT_FALSE(history.isSaved());
}

TEST(UndoHistory, BeyondItsCapacityTheOldestStepIsForgotten)
{
    int total = 0;
    UndoHistory history(2);
    history.push(std::make_unique<AddCommand>(total, 1, u"one"_s));
    history.push(std::make_unique<AddCommand>(total, 10, u"ten"_s));
    history.push(std::make_unique<AddCommand>(total, 100, u"hundred"_s));
    EXPECT_EQ(history.count(), 2u);
    history.undo();
    history.undo();
    EXPECT_FALSE(history.canUndo());
    EXPECT_EQ(total, 1);
}
