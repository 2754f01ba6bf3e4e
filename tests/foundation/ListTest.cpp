// SPDX-License-Identifier: Apache-2.0
#include "foundation/List.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "foundation/Error.h"
#include "foundation/ListImpl.h"
#include "platform/host/LogCapture.h"

namespace Zvex {
namespace {

// Elements are never followed, so small numbers do.
void* item(uintptr_t value) {
    return reinterpret_cast<void*>(value);
}

void fill(List* list, std::initializer_list<uintptr_t> values) {
    for (const uintptr_t value : values) ASSERT_EQ(list->Add(item(value)), 1);
}

std::vector<uintptr_t> contents(const List& list) {
    std::vector<uintptr_t> values;
    for (int i = 0; i < list.GetCount(); ++i) values.push_back(reinterpret_cast<uintptr_t>(list.Get(i)));
    return values;
}

using Values = std::vector<uintptr_t>;

template <typename Result, typename Operation>
void expectFailure(unsigned long code, Result result, Operation operation, const char* what) {
    Error::SetError(0);
    host::LogCapture capture;
    EXPECT_EQ(operation(), result) << what;
    EXPECT_EQ(Error::GetError(), code) << what;
    EXPECT_TRUE(capture.lines().empty()) << what;
}
#define EXPECT_FAILURE(code, result, expression) \
    expectFailure(                               \
        code, result, [&] { return expression; }, #expression)

TEST(List, AddsInsertsAndRemoves) {
    List list;
    ASSERT_EQ(list.Construct(), 1);
    EXPECT_EQ(list.Insert(item(2), 5), 1) << "an empty list appends";
    EXPECT_EQ(list.Insert(item(1), 0), 1) << "the head moves";
    EXPECT_EQ(list.Insert(item(4), 2), 1) << "at the count it appends";
    EXPECT_EQ(list.Insert(item(3), 2), 1);
    EXPECT_EQ(contents(list), (Values{1, 2, 3, 4}));
    EXPECT_EQ(list.GetIndex(item(3)), 2);
    EXPECT_EQ(list.GetIndex(item(9)), -1);
    EXPECT_EQ(list.IsContained(item(4)), 1);
    EXPECT_EQ(list.IsContained(item(5)), 0);

    Error::SetError(0);
    EXPECT_EQ(list.Remove(item(77)), 1) << "not there, no error";
    EXPECT_EQ(Error::GetError(), 0u);
    EXPECT_EQ(list.Remove(1), 1);
    EXPECT_EQ(list.Remove(item(4)), 1);
    EXPECT_EQ(contents(list), (Values{1, 3}));
    EXPECT_EQ(list.Add(item(3)), 1);
    EXPECT_EQ(list.Remove(item(3)), 1) << "the first of two";
    EXPECT_EQ(contents(list), (Values{1, 3}));
    fill(&list, {5, 6, 7});
    EXPECT_EQ(list.Remove(1, 2), 1);
    EXPECT_EQ(contents(list), (Values{1, 6, 7}));
    EXPECT_EQ(list.RemoveAll(), 1);
    EXPECT_EQ(list.GetCount(), 0);
}

TEST(List, CopiesOtherListsAndItself) {
    List source, copy, fromArray;
    ASSERT_EQ(source.Construct(), 1);
    fill(&source, {1, 2, 3});
    // With no position free the source is read all the same, and a success leaves no code.
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
    EXPECT_FAILURE(7, 0, bare.Construct(none));
    EXPECT_FAILURE(8, 0, bare.Construct(&list));
    EXPECT_FAILURE(7, 0, bare.Construct(nullptr, 1));
    EXPECT_FAILURE(7, 0, bare.Construct(items, -1));
    EXPECT_FAILURE(8, 0, bare.Add(item(1)));
    EXPECT_FAILURE(8, -1, bare.GetCount());
    EXPECT_FAILURE(8, static_cast<void*>(nullptr), bare.Get(0));
    EXPECT_FAILURE(8, 0, bare.Insert(item(1), 0));
    EXPECT_FAILURE(8, 0, bare.Remove(item(1)));
    EXPECT_FAILURE(8, 0, bare.Remove(0));
    EXPECT_FAILURE(8, 0, bare.RemoveAll());
    EXPECT_FAILURE(8, -1, bare.GetIndex(item(1)));
    EXPECT_FAILURE(8, 0, bare.IsContained(item(1)));
    EXPECT_FAILURE(8, -1L, bare.BeginTraversal());
    EXPECT_FAILURE(8, 0, bare.NextData(1));

    ASSERT_EQ(list.Construct(), 1);
    EXPECT_FAILURE(4, 0, list.Construct());
    EXPECT_FAILURE(4, 0, list.Construct(none));
    EXPECT_FAILURE(7, 0, list.Remove(item(1)));
    fill(&list, {1, 2, 3});
    EXPECT_FAILURE(7, 0, list.Add(none));
    EXPECT_FAILURE(8, 0, list.Add(&bare));
    EXPECT_FAILURE(7, 0, list.IsContained(none));
    EXPECT_FAILURE(3, static_cast<void*>(nullptr), list.Get(3));
    EXPECT_FAILURE(3, static_cast<void*>(nullptr), list.Get(-1));
    EXPECT_FAILURE(7, 0, list.Insert(item(1), -1));
    EXPECT_FAILURE(7, 0, list.Remove(static_cast<void*>(nullptr)));
    EXPECT_FAILURE(3, 0, list.Remove(3));
    EXPECT_FAILURE(3, 0, list.Remove(-1, 1));
    const long position = list.BeginTraversal();
    EXPECT_FAILURE(3, 0, list.Move(position, 3));
    for (const long wrong : {0L, -1L, position + 1}) {
        EXPECT_FAILURE(7, static_cast<void*>(nullptr), list.GetData(wrong));
        EXPECT_FAILURE(7, 0, list.NextData(wrong));
        EXPECT_FAILURE(7, 0, list.PrevData(wrong));
        EXPECT_FAILURE(7, 0, list.MoveFirst(wrong));
        EXPECT_FAILURE(7, 0, list.MoveLast(wrong));
        EXPECT_FAILURE(7, 0, list.Move(wrong, 0));
        EXPECT_FAILURE(7, 0, list.EndTraversal(wrong));
    }
    EXPECT_EQ(list.EndTraversal(position), 1);
    EXPECT_FAILURE(7, 0, list.EndTraversal(position));
    EXPECT_FAILURE(3, 0, list.Remove(1, 5));
    EXPECT_EQ(contents(list), (Values{1})) << "what could be removed is gone";
}

TEST(List, TraversalRunsPastTheEndAndStartsAgain) {
    List list;
    ASSERT_EQ(list.Construct(), 1);
    fill(&list, {1, 2});
    const long position = list.BeginTraversal();
    Error::SetError(0);
    EXPECT_EQ(list.GetData(position), item(1));
    EXPECT_EQ(list.NextData(position), 1);
    EXPECT_EQ(list.GetData(position), item(2));
    EXPECT_EQ(list.NextData(position), 1);
    EXPECT_EQ(list.GetData(position), nullptr);
    EXPECT_EQ(Error::GetError(), 0u) << "standing past the end is no error";
    EXPECT_FAILURE(9, 0, list.NextData(position));
    EXPECT_EQ(list.GetData(position), item(1));
    EXPECT_EQ(list.PrevData(position), 1);
    EXPECT_EQ(list.GetData(position), nullptr);
    EXPECT_FAILURE(9, 0, list.PrevData(position));
    EXPECT_EQ(list.GetData(position), item(2));
    EXPECT_EQ(list.MoveFirst(position), 1);
    EXPECT_EQ(list.GetData(position), item(1));
    EXPECT_EQ(list.MoveLast(position), 1);
    EXPECT_EQ(list.GetData(position), item(2));
    EXPECT_EQ(list.Move(position, 0), 1);
    EXPECT_EQ(list.GetData(position), item(1));
}

TEST(List, TenTraversalsAtATime) {
    List list;
    ASSERT_EQ(list.Construct(), 1);
    fill(&list, {1});
    std::vector<long> positions;
    for (int i = 0; i < 10; ++i) positions.push_back(list.BeginTraversal());
    EXPECT_FAILURE(2, -1L, list.BeginTraversal());
    EXPECT_EQ(list.EndTraversal(positions[4]), 1);
    EXPECT_GT(list.BeginTraversal(), 0);
    EXPECT_FAILURE(2, -1L, list.BeginTraversal());

    // Removing everything frees the slots; the positions stay, past the end, until they are ended.
    EXPECT_EQ(list.RemoveAll(), 1);
    fill(&list, {7});
    EXPECT_EQ(list.GetData(positions[0]), nullptr);
    for (int i = 0; i < 10; ++i) EXPECT_GT(list.BeginTraversal(), 0);
    EXPECT_EQ(list.MoveFirst(positions[0]), 1);
    EXPECT_EQ(list.GetData(positions[0]), item(7));
    EXPECT_EQ(list.EndTraversal(positions[0]), 1);
    EXPECT_FAILURE(2, -1L, list.BeginTraversal());
}

TEST(List, RemovalMovesOnlyTheLowestSlot) {
    List list;
    ASSERT_EQ(list.Construct(), 1);
    fill(&list, {1, 2, 3});
    const long first = list.BeginTraversal(), second = list.BeginTraversal(), third = list.BeginTraversal();
    EXPECT_EQ(list.EndTraversal(first), 1);
    const long again = list.BeginTraversal();  // into the first slot
    for (const long position : {second, third, again}) EXPECT_EQ(list.Move(position, 1), 1);
    EXPECT_EQ(list.Remove(item(2)), 1);
    EXPECT_EQ(list.GetData(again), item(3));
    EXPECT_EQ(list.GetData(second), nullptr);
    EXPECT_EQ(list.GetData(third), nullptr);
    EXPECT_FAILURE(9, 0, list.NextData(second));
    EXPECT_EQ(list.GetData(second), item(1));
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

// Every operation in random mixtures against a vector. A position is the index it stands on, or kPastEnd.
TEST(List, BehavesLikeAVector) {
    constexpr int kPastEnd = -1;
    struct Position {
        long number;
        int index;
        int slot;  // -1 once RemoveAll took it
    };
    std::mt19937 random(31337);
    for (int run = 0; run < 60; ++run) {
        List list;
        ASSERT_EQ(list.Construct(), 1);
        Values model;
        std::vector<Position> open;
        const auto count = [&] { return static_cast<int>(model.size()); };
        const auto removeAt = [&](int index) {
            model.erase(model.begin() + index);
            Position* lowest = nullptr;
            for (Position& p : open) {
                if (p.index == index && p.slot >= 0 && (lowest == nullptr || p.slot < lowest->slot))
                    lowest = &p;
            }
            for (Position& p : open) {
                if (p.index > index) {
                    --p.index;
                } else if (p.index == index) {
                    p.index = &p == lowest && index < count() ? index : kPastEnd;
                }
            }
        };
        for (int step = 0; step < 400; ++step) {
            SCOPED_TRACE(testing::Message() << "run " << run << " step " << step);
            const int any = count() > 0 ? static_cast<int>(random() % model.size()) : 0;
            const uintptr_t value = 1 + random() % 12;
            Position* p = open.empty() ? nullptr : &open[random() % open.size()];
            switch (random() % 18) {
                case 0:
                case 1:
                    ASSERT_EQ(list.Add(item(value)), 1);
                    model.push_back(value);
                    break;
                case 2:
                case 3: {
                    const int index = any + static_cast<int>(random() % 3);
                    ASSERT_EQ(list.Insert(item(value), index), 1);
                    if (index < count()) {
                        for (Position& other : open) other.index += other.index >= index ? 1 : 0;
                    }
                    model.insert(model.begin() + std::min(index, count()), value);
                    break;
                }
                case 4:
                    if (model.empty()) break;
                    ASSERT_EQ(list.Remove(item(value)), 1);
                    if (const auto found = std::find(model.begin(), model.end(), value);
                        found != model.end()) {
                        removeAt(static_cast<int>(found - model.begin()));
                    }
                    break;
                case 5:
                    if (model.empty()) break;
                    ASSERT_EQ(list.Remove(any), 1);
                    removeAt(any);
                    break;
                case 6: {
                    if (model.empty()) break;
                    const int wanted = static_cast<int>(random() % 4);
                    ASSERT_EQ(list.Remove(any, wanted), any + wanted <= count() ? 1 : 0);
                    for (int i = 0; i < wanted && any < count(); ++i) removeAt(any);
                    break;
                }
                case 7:
                    if (random() % 8 != 0) break;
                    ASSERT_EQ(list.RemoveAll(), 1);
                    model.clear();
                    for (Position& other : open) other.index = other.slot = -1;
                    break;
                case 8:
                case 9: {
                    bool used[10] = {};
                    for (const Position& other : open) {
                        if (other.slot >= 0) used[other.slot] = true;
                    }
                    const int slot = static_cast<int>(std::find(used, used + 10, false) - used);
                    const long number = list.BeginTraversal();
                    if (slot == 10) {
                        ASSERT_EQ(number, -1);
                    } else {
                        ASSERT_GT(number, 0);
                        open.push_back({number, model.empty() ? kPastEnd : 0, slot});
                    }
                    break;
                }
                case 10:
                    if (p == nullptr) break;
                    ASSERT_EQ(list.EndTraversal(p->number), 1);
                    open.erase(open.begin() + (p - open.data()));
                    break;
                case 11:
                case 12:
                    if (p == nullptr) break;
                    ASSERT_EQ(list.NextData(p->number), p->index == kPastEnd ? 0 : 1);
                    if (p->index == kPastEnd) {
                        p->index = model.empty() ? kPastEnd : 0;
                    } else {
                        p->index = p->index + 1 < count() ? p->index + 1 : kPastEnd;
                    }
                    break;
                case 13:
                    if (p == nullptr) break;
                    ASSERT_EQ(list.PrevData(p->number), p->index == kPastEnd ? 0 : 1);
                    p->index = (p->index == kPastEnd ? count() : p->index) - 1;
                    break;
                case 14:
                    if (p == nullptr) break;
                    if (random() % 2 == 0) {
                        ASSERT_EQ(list.MoveFirst(p->number), 1);
                        p->index = model.empty() ? kPastEnd : 0;
                    } else {
                        ASSERT_EQ(list.MoveLast(p->number), 1);
                        p->index = count() - 1;
                    }
                    break;
                case 15:
                    if (p == nullptr || model.empty()) break;
                    ASSERT_EQ(list.Move(p->number, any), 1);
                    p->index = any;
                    break;
                case 16:
                    ASSERT_EQ(list.GetIndex(item(value)),
                              std::count(model.begin(), model.end(), value) == 0
                                  ? -1
                                  : std::find(model.begin(), model.end(), value) - model.begin());
                    break;
                default:
                    break;
            }
            ASSERT_EQ(list.GetCount(), count());
            if (!model.empty()) {
                const int index = static_cast<int>(random() % model.size());
                ASSERT_EQ(list.Get(index), item(model[static_cast<size_t>(index)])) << "index " << index;
            }
            for (const Position& other : open) {
                ASSERT_EQ(list.GetData(other.number),
                          other.index == kPastEnd ? nullptr : item(model[static_cast<size_t>(other.index)]));
            }
        }
        ASSERT_EQ(contents(list), model);
    }
}

}  // namespace
}  // namespace Zvex
