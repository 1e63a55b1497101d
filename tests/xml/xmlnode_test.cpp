#include "xml/pool.h"
#include "xml/xmldocument.h"
#include "xml/xmlelement.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string childNames(XMLNode *parent)
{
    std::string names;
    for (XMLNode *child = parent->firstChild; child; child = child->nextSibling) {
        names += static_cast<XMLElement *>(child)->tagName();
        EXPECT_EQ(child->parent, parent);
    }
    return names;
}

// An element that counts its destructions, to see that the pool runs them.
struct CountingElement : XMLElement
{
    explicit CountingElement(int *count) : count(count) {}
    ~CountingElement() override { ++*count; }
    int *count;
};

} // namespace

TEST(XMLNode, EditsTheChildList)
{
    XMLDocument document;
    Pool *previous = Pool::setCurrentPool(&document.pool);
    XMLElement *parent = new XMLElement("p");
    XMLElement *a = new XMLElement("a"), *b = new XMLElement("b"), *c = new XMLElement("c");
    XMLElement *d = new XMLElement("d"), *e = new XMLElement("e");

    parent->appendChild(b);
    parent->appendChild(c);
    parent->prependChild(a);
    EXPECT_EQ(childNames(parent), "abc");

    parent->removeChild(d); // not a child: nothing happens
    parent->removeChild(b);
    EXPECT_EQ(childNames(parent), "ac");
    EXPECT_EQ(b->nextSibling, c); // the removed child keeps its links

    parent->replaceChild(a, d);
    EXPECT_EQ(childNames(parent), "dc");

    // A chain goes behind `after`, or to the end when `after` isn't a child.
    a->nextSibling = b;
    b->nextSibling = nullptr;
    parent->reparentChildrenAfter(d, a);
    EXPECT_EQ(childNames(parent), "dabc");
    e->nextSibling = nullptr;
    parent->reparentChildrenAfter(new XMLElement("x"), e);
    EXPECT_EQ(childNames(parent), "dabce");
    XMLElement *empty = new XMLElement("empty");
    empty->reparentChildrenAfter(nullptr, d);
    EXPECT_EQ(childNames(empty), "dabce");

    EXPECT_STREQ(XMLNode::mkString("hello", 3), "hel");
    Pool::setCurrentPool(previous);
}

TEST(XMLElement, KeepsAttributesInOrder)
{
    XMLDocument document;
    Pool *previous = Pool::setCurrentPool(&document.pool);
    XMLElement *element = new XMLElement("e");
    element->setAttribute("a", "1");
    element->setAttribute("b", nullptr);
    element->setAttribute("a", "2");
    EXPECT_STREQ(element->attribute("a"), "2");
    EXPECT_EQ(element->attribute("b"), nullptr);
    EXPECT_TRUE(element->hasAttribute("b"));
    EXPECT_FALSE(element->hasAttribute("c"));
    element->removeAttribute("c");
    element->removeAttribute("a");
    ASSERT_EQ(element->getAttributeList().size(), 1u);
    EXPECT_STREQ(element->getAttributeList().front().first, "b");
    Pool::setCurrentPool(previous);

    // An element outside any pool keeps its attributes on the heap.
    XMLElement onStack("s");
    onStack.setAttribute("k", "v");
    EXPECT_STREQ(onStack.attribute("k"), "v");
}

TEST(Pool, AllocatesInBlocksAndDestroysItsObjects)
{
    Pool pool;
    Pool *previous = Pool::setCurrentPool(&pool);
    EXPECT_EQ(Pool::setCurrentPool(&pool), &pool);

    char *first = static_cast<char *>(pool.allocate(3));
    char *second = static_cast<char *>(pool.allocate(1));
    EXPECT_EQ(second - first, 8);
    EXPECT_EQ(pool.blockSize, 8192u);
    EXPECT_EQ(pool.used, 16u);
    pool.allocate(100000);
    EXPECT_EQ(pool.blockSize, 100000u);
    EXPECT_EQ(pool.used, 100000u);

    int destroyed = 0;
    new CountingElement(&destroyed);
    XMLNode *deleted = new CountingElement(&destroyed);
    delete deleted; // runs the destructor once; the memory stays with the pool
    EXPECT_EQ(destroyed, 1);
    pool.clear();
    EXPECT_EQ(destroyed, 2);
    EXPECT_EQ(pool.blocks, nullptr);
    EXPECT_EQ(pool.used, 0u);
    EXPECT_EQ(pool.blockSize, 0u);
    Pool::setCurrentPool(previous);
}
