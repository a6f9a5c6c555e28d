#include "model/ModelTestSupport.h"
#include "model/QueryCore.h"

namespace quarry {

namespace {

QueryCorePtr folder(const QString& name)
{
    return QueryCore::initWithQueryFolder(name);
}

/// root > (other, group > query)
struct SmallTree {
    QueryCorePtr root = folder(QString());
    QueryCorePtr group = folder("group"_q);
    QueryCorePtr query = QueryCore::initWithQuery("query"_q);

    SmallTree()
    {
        root->addChild(QueryCore::initWithQuery("other"_q));
        root->addChild(group);
        group->addChild(query);
    }
};

QString joined(std::initializer_list<QueryCorePtr> path)
{
    QStringList uuids;
    for (const QueryCorePtr& node : path)
        uuids << node->UUID();
    return uuids.join(u'.');
}

} // namespace

TEST(QueryTree, InsertsAtAnIndexButAppendsAtZeroAndPastTheEnd)
{
    const QueryCorePtr root = folder(QString());
    EXPECT_EQ(root->childs(), std::nullopt);
    EXPECT_EQ(root->numberOfChilds(), 0);
    QString names;
    for (const auto& [name, index] : std::vector<std::pair<QString, qint64>>{
             {"a"_q, 0}, {"b"_q, 0}, {"c"_q, 1}, {"d"_q, 3}, {"e"_q, -1}, {"f"_q, 9}})
        root->insertChild(folder(name), index);
    const QList<QueryCorePtr> childs = *root->childs();
    for (const QueryCorePtr& child : childs)
        names += child->title();
    EXPECT_EQ(names, "acbdef"_q);
}

TEST(QueryTree, WritesKeyPathsWhenANodeIsAddedAndNotAgainBelowIt)
{
    const SmallTree tree;
    const QueryCorePtr newFolder = folder("new"_q);
    EXPECT_EQ(tree.query->keyPath(), joined({tree.root, tree.group, tree.query}));
    tree.root->addChild(newFolder);
    tree.root->removeChild(tree.group);
    newFolder->addChild(tree.group);
    EXPECT_EQ(tree.root->keyPath(), QString());
    EXPECT_EQ(tree.group->keyPath(), joined({tree.root, newFolder, tree.group}));
    EXPECT_EQ(tree.query->keyPath(), joined({tree.root, tree.group, tree.query}));
}

TEST(QueryTree, FindsNodesByUuidAndByKeyPath)
{
    const SmallTree tree;
    EXPECT_EQ(tree.root->findQueryForUUID(tree.root->UUID()), tree.root);
    EXPECT_EQ(tree.root->findQueryForUUID(tree.query->UUID()), tree.query);
    EXPECT_EQ(tree.root->findQueryForUUID(tree.query->UUID().toLower()), nullptr);
    EXPECT_EQ(tree.query->findQueryForUUID(tree.group->UUID()), nullptr);
    EXPECT_EQ(tree.root->nodeForKeyPath(tree.query->keyPath()), tree.query);
    EXPECT_EQ(tree.group->nodeForKeyPath(joined({tree.group, tree.query})), tree.query);
    EXPECT_EQ(tree.root->nodeForKeyPath(tree.root->UUID()), tree.root);
    EXPECT_EQ(tree.root->nodeForKeyPath(tree.query->UUID()), nullptr);
    EXPECT_EQ(tree.root->nodeForKeyPath(joined({tree.root, tree.query})), nullptr);
}

TEST(QueryTree, LooksAMissingParentUpByTheKeyPath)
{
    const SmallTree tree;
    EXPECT_EQ(tree.query->parent(), tree.group);
    tree.query->setParent(nullptr);
    EXPECT_EQ(tree.query->parent(), nullptr) << "without services nothing is found";

    const auto services = std::make_shared<TreeServices>();
    services->findByUuid = [root = std::weak_ptr(tree.root)](const QString& uuid) {
        return root.lock()->findQueryForUUID(uuid);
    };
    tree.root->setServices(services);
    EXPECT_EQ(tree.query->parent(), tree.group);
    EXPECT_EQ(tree.query->snapshot().parent, tree.group) << "the look-up is remembered";
    tree.query->setKeyPath("nobody."_q + tree.query->UUID());
    EXPECT_EQ(tree.query->findParentOfQuery(tree.query), nullptr);
    tree.root->setKeyPath(joined({tree.query, tree.root}));
    EXPECT_EQ(tree.root->findParentOfQuery(tree.root), nullptr) << "a node below cannot be the parent";
}

TEST(QueryTree, RefusesToPutAFolderBelowItself)
{
    const SmallTree tree;
    tree.group->addChild(tree.root);
    tree.root->addChild(tree.root);
    tree.root->addChild(nullptr);
    EXPECT_EQ(tree.group->numberOfChilds(), 1);
    EXPECT_EQ(tree.root->numberOfChilds(), 2);
    EXPECT_EQ(tree.root->snapshot().parent, nullptr);
}

TEST(QueryTree, RemovesEveryEntryOfAChildAndKeepsTheNode)
{
    const SmallTree tree;
    tree.group->addChild(tree.query);
    tree.group->removeChild(tree.group->childs()->first());
    EXPECT_EQ(tree.group->numberOfChilds(), 0);
    EXPECT_NE(tree.group->childs(), std::nullopt);
    EXPECT_EQ(tree.query->snapshot().parent, nullptr);
}

TEST(QueryTree, AFolderAnswersTheUnreadCountOfItsFirstSubFolder)
{
    const auto unread = [](int count) { return queryWith(ResultList(count, ResultRecord())); };
    const SmallTree tree;
    tree.group->addChild(unread(4));
    tree.group->addChild(unread(5));
    tree.root->insertChild(unread(1), 1);
    tree.root->addChild(unread(2));
    EXPECT_EQ(tree.root->nbUnreadItem(), 9);
    tree.root->removeChild(tree.group);
    EXPECT_EQ(tree.root->nbUnreadItem(), 3);
}

} // namespace quarry
