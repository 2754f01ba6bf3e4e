// SPDX-License-Identifier: Apache-2.0
#include "foundation/List.h"

#include <gtest/gtest.h>

#include <vector>

#include "foundation/ListImpl.h"
#include "tests/foundation/Outcome.h"

namespace Zvex {
namespace {

using Values = std::vector<uintptr_t>;

// Elements are never dereferenced, so small numbers will do.
void* item(uintptr_t value) {
    return reinterpret_cast<void*>(value);
}

void fill(List* list, std::initializer_list<uintptr_t> values) {
    for (const uintptr_t value : values) ASSERT_EQ(list->Add(item(value)), 1);
}

Values contents(const List& list) {
    Values values;
    for (int i = 0; i < list.GetCount(); ++i) values.push_back(reinterpret_cast<uintptr_t>(list.Get(i)));
    return values;
}

TEST(List, CopiesOtherListsAndItself) {
    List source, copy, fromArray;
    ASSERT_EQ(source.Construct(), 1);
    fill(&source, {1, 2, 3});
    // The source is read even if it has no free position, and a success leaves no code.
    for (int i = 0; i < 10; ++i) ASSERT_GT(source.BeginTraversal(), 0);
    Error::SetError(0);
    EXPECT_EQ(copy.Construct(&source), 1);
    EXPECT_EQ(Error::GetError(), 0u);
    EXPECT_EQ(contents(copy), (Values{1, 2, 3}));
    EXPECT_EQ(copy.Add(&copy), 1);
    EXPECT_EQ(contents(copy), (Values{1, 2, 3, 1, 2, 3}));
    EXPECT_EQ(copy.IsContained(&source), 1);
    EXPECT_EQ(source.Add(item(9)), 1);
    EXPECT_EQ(copy.IsContained(&source), 0);
    void* items[] = {item(4), nullptr, item(6)};
    EXPECT_EQ(fromArray.Construct(items, 3), 1);
    EXPECT_EQ(contents(fromArray), (Values{4, 0, 6}));
    List empty;
    ASSERT_EQ(empty.Construct(items, 0), 1);
    EXPECT_EQ(copy.Add(&empty), 1);
    EXPECT_EQ(copy.IsContained(&empty), 1);
    EXPECT_EQ(copy.GetCount(), 6);
}

TEST(List, RefusesWhatCannotBeDoneWithoutALine) {
    List bare, list;
    List* const none = nullptr;
    void* items[] = {item(1)};
    EXPECT_OUTCOMES(7, 0, nullptr, of(bare.Construct(none)), of(bare.Construct(nullptr, 1)),
                    of(bare.Construct(items, -1)));
    EXPECT_OUTCOMES(8, 0, nullptr, of(bare.Construct(&list)), of(bare.Add(item(1))), of(bare.Get(0)),
                    of(bare.Insert(item(1), 0)), of(bare.Remove(item(1))), of(bare.Remove(0)),
                    of(bare.RemoveAll()), of(bare.IsContained(item(1))), of(bare.NextData(1)));
    EXPECT_OUTCOMES(8, -1, nullptr, of(bare.GetCount()), of(bare.GetIndex(item(1))),
                    of(bare.BeginTraversal()));
    ASSERT_EQ(list.Construct(), 1);
    EXPECT_OUTCOMES(4, 0, nullptr, of(list.Construct()), of(list.Construct(none)));
    EXPECT_OUTCOMES(7, 0, nullptr, of(list.Remove(item(1))));  // of an empty list
    fill(&list, {1, 2, 3});
    const long position = list.BeginTraversal();
    EXPECT_OUTCOMES(8, 0, nullptr, of(list.Add(&bare)));
    EXPECT_OUTCOMES(7, 0, nullptr, of(list.Add(none)), of(list.IsContained(none)),
                    of(list.Insert(item(1), -1)), of(list.Remove(static_cast<void*>(nullptr))));
    EXPECT_OUTCOMES(3, 0, nullptr, of(list.Get(3)), of(list.Get(-1)), of(list.Remove(3)),
                    of(list.Remove(-1, 1)), of(list.Move(position, 3)));
    EXPECT_OUTCOMES(0, 1, nullptr, of(list.EndTraversal(position)));
    for (const long wrong : {0L, -1L, position, position + 1}) {
        EXPECT_OUTCOMES(7, 0, nullptr, of(list.GetData(wrong)), of(list.NextData(wrong)),
                        of(list.PrevData(wrong)), of(list.MoveFirst(wrong)), of(list.MoveLast(wrong)),
                        of(list.Move(wrong, 0)), of(list.EndTraversal(wrong)));
    }
    EXPECT_OUTCOMES(3, 0, nullptr, of(list.Remove(1, 5)));
    EXPECT_EQ(contents(list), (Values{1})) << "what could be removed is gone";
}

TEST(List, CursorMarksAreTheDocumentedOnes) {
    ListImpl impl;
    EXPECT_EQ(impl.cursorIndex, -1);
    impl.append(item(1));
    ListImpl::Position* position = impl.open();
    EXPECT_EQ(impl.cursorIndex, 0);
    EXPECT_EQ(impl.cursorNode, impl.head);
    impl.close(position);
    EXPECT_EQ(impl.cursorIndex, -999999999);
    EXPECT_EQ(impl.cursorNode, nullptr);
}

}  // namespace
}  // namespace Zvex
