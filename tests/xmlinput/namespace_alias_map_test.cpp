#include <gtest/gtest.h>

#include <kdbind/xmlinput.h>

using namespace KdBind;

TEST(NamespaceAliasMapTest, OneAliasPerUriInUriOrder)
{
    CNamespaceAliasMap map;
    EXPECT_EQ(map.GetNamespaceCount(), 0);
    map.Add("z", "urn:b");
    map.Add("y", "urn:a");
    map.Add("x", "urn:b");
    ASSERT_EQ(map.GetNamespaceCount(), 2);
    EXPECT_EQ(map.GetNamespaceAt(0), "urn:a");
    EXPECT_EQ(map.GetNamespaceAt(-3), "urn:a");
    EXPECT_EQ(map.GetNamespaceAt(1), "urn:b");
    EXPECT_EQ(map.GetAliasFromNamespace("urn:b"), "x");
    EXPECT_FALSE(map.DoesAliasExist("z"));
}

TEST(NamespaceAliasMapTest, SharedAliasResolvesToTheLowerUri)
{
    CNamespaceAliasMap map;
    map.Add("p", "urn:z");
    map.Add("p", "urn:m");
    EXPECT_EQ(map.GetNamespaceCount(), 2);
    EXPECT_TRUE(map.DoesAliasExist("p"));
    EXPECT_EQ(map.GetNamespaceFromAlias("p"), "urn:m");
}

TEST(NamespaceAliasMapTest, UnknownAliasFails)
{
    CNamespaceAliasMap map;
    try {
        map.GetNamespaceFromAlias("nope");
        FAIL() << "no exception";
    } catch (CKdException const& e) {
        EXPECT_EQ(e.GetMessage(), "Namespace alias [nope] not found");
    }
}

TEST(NamespaceAliasMapTest, AskingForAnUnknownUriInsertsIt)
{
    CNamespaceAliasMap map;
    EXPECT_EQ(map.GetAliasFromNamespace("urn:new"), "");
    EXPECT_EQ(map.GetNamespaceCount(), 1);
    EXPECT_TRUE(map.DoesNamespaceExist("urn:new"));
    EXPECT_EQ(map.GetNamespaceAt(0), "urn:new");
}

TEST(NamespaceAliasMapTest, RemoveIgnoresUnknownUris)
{
    CNamespaceAliasMap map;
    map.Add("a", "urn:a");
    map.RemoveNamespace("urn:unknown");
    EXPECT_EQ(map.GetNamespaceCount(), 1);
    map.RemoveNamespace("urn:a");
    EXPECT_EQ(map.GetNamespaceCount(), 0);
    EXPECT_FALSE(map.DoesNamespaceExist("urn:a"));
}
