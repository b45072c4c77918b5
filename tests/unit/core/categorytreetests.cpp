#include "core/categorytree.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace fb::core;

namespace {

QUuid addCategory(CategoryTree &tree, const QString &name, const QUuid &parentId = QUuid())
{
    return tree.add(std::make_unique<Category>(name, parentId))->id();
}

FieldDefinition textField(const QString &label)
{
    return {label.toLower(), label, FieldType::Text, false, {}, {}};
}

} // namespace

TEST(CategoryTree, TreeOrderWalksParentsBeforeChildrenInNameOrder)
{
    CategoryTree tree;
    const QUuid places = addCategory(tree, u"places"_s);
    const QUuid characters = addCategory(tree, u"Characters"_s);
    addCategory(tree, u"Villains"_s, characters);
    addCategory(tree, u"heroes"_s, characters);
    addCategory(tree, u"Cities"_s, places);
    addCategory(tree, u"Stray"_s, QUuid::createUuid()); // its parent is missing
    // Two categories that are each other's parent are still listed, once each.
    const QUuid loopA = addCategory(tree, u"Loop A"_s);
    const QUuid loopB = addCategory(tree, u"Loop B"_s, loopA);
    tree.setParentId(loopA, loopB);

    QStringList lines;
    for (const CategoryTree::TreeEntry &entry : tree.treeOrder())
        lines.append(QString(entry.depth * 2, u' ') + entry.category->name());
    ASSERT_EQ(lines.size(), 8);
    EXPECT_EQ(lines.mid(0, 6), QStringList({u"Characters"_s, u"  heroes"_s, u"  Villains"_s,
                                            u"places"_s, u"  Cities"_s, u"Stray"_s}));
    EXPECT_TRUE(lines.contains(u"Loop A"_s) || lines.contains(u"  Loop A"_s));
    EXPECT_EQ(tree.children(QUuid()).size(), 3u);
    EXPECT_EQ(tree.ancestors(loopA).size(), 1u);
}

TEST(CategoryTree, EffectiveSchemaListsInheritedFieldsFromTheTopDown)
{
    CategoryTree tree;
    const QUuid beings = addCategory(tree, u"Beings"_s);
    const QUuid people = addCategory(tree, u"People"_s, beings);
    const QUuid nobles = addCategory(tree, u"Nobles"_s, people);
    tree.setFields(beings, {textField(u"Summary"_s)});
    tree.setFields(people, {textField(u"Eye Color"_s)});
    tree.setFields(nobles, {textField(u"House"_s)});

    QStringList schema;
    for (const CategoryTree::SchemaField &field : tree.effectiveSchema(nobles))
        schema.append(field.definition.label + (field.inherited ? u" (inherited)"_s : QString()));
    EXPECT_EQ(schema,
              QStringList({u"Summary (inherited)"_s, u"Eye Color (inherited)"_s, u"House"_s}));
    EXPECT_TRUE(tree.isInSubtree(nobles, beings));
    EXPECT_TRUE(tree.isInSubtree(people, people));
    EXPECT_FALSE(tree.isInSubtree(beings, nobles));
    EXPECT_EQ(tree.category(nobles)->fieldIndex(u"house"_s), 0);
    EXPECT_EQ(tree.category(nobles)->fieldIndex(u"summary"_s), -1);
}

TEST(CategoryTree, ChangesStampTheCategoryAndTheTree)
{
    CategoryTree tree;
    const QUuid id = addCategory(tree, u"Places"_s);
    const Category *category = tree.category(id);
    const quint64 treeBefore = tree.revision();
    const quint64 categoryBefore = category->revision();

    EXPECT_TRUE(tree.setName(id, u"Locations"_s));
    EXPECT_GT(tree.revision(), treeBefore);
    EXPECT_GT(category->revision(), categoryBefore);
    EXPECT_EQ(category->name(), u"Locations"_s);
    EXPECT_FALSE(tree.setName(QUuid::createUuid(), u"Nowhere"_s));

    std::unique_ptr<Category> taken = tree.take(id);
    EXPECT_EQ(taken.get(), category);
    EXPECT_EQ(tree.category(id), nullptr);
    EXPECT_EQ(tree.add(std::move(taken)), category);
    EXPECT_EQ(tree.add(std::make_unique<Category>(u"Twin"_s, QUuid(), id)), nullptr);
}
