// SPDX-License-Identifier: Apache-2.0
#include "foundation/List.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "foundation/ListImpl.h"
#include "tests/foundation/Outcome.h"

namespace Zvex {
namespace {

using Values = std::vector<uintptr_t>;

// Elements are never followed, so small numbers do.
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

// Every operation in random mixtures against a vector, with the code each step leaves. A position is the
// index it stands on, or kPastEnd. Of several positions on a removed element only the one in the lowest of
// the ten slots moves on; RemoveAll takes the slots but leaves the positions past the end until they are
// ended.
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
                const bool standsThere = p.index == index && p.slot >= 0;
                if (standsThere && (lowest == nullptr || p.slot < lowest->slot)) lowest = &p;
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
            const int any = model.empty() ? 0 : static_cast<int>(random() % model.size());
            const int first = model.empty() ? kPastEnd : 0;
            const uintptr_t value = 1 + random() % 12;
            const auto found = std::find(model.begin(), model.end(), value);
            const int foundIndex = found != model.end() ? static_cast<int>(found - model.begin()) : -1;
            Position* p = open.empty() ? nullptr : &open[random() % open.size()];
            unsigned long code = 0;
            Error::SetError(0);
            const uint32_t kind = random() % 18;
            if (kind <= 1) {
                ASSERT_EQ(list.Add(item(value)), 1);
                model.push_back(value);
            } else if (kind <= 3) {
                const int index = any + static_cast<int>(random() % 3);
                ASSERT_EQ(list.Insert(item(value), index), 1);
                for (Position& other : open) other.index += index < count() && other.index >= index ? 1 : 0;
                model.insert(model.begin() + std::min(index, count()), value);
            } else if (kind == 4 && !model.empty()) {
                ASSERT_EQ(list.Remove(item(value)), 1) << "also when it is not there";
                if (foundIndex >= 0) removeAt(foundIndex);
            } else if (kind == 5 && !model.empty()) {
                ASSERT_EQ(list.Remove(any), 1);
                removeAt(any);
            } else if (kind == 6 && !model.empty()) {
                const int wanted = static_cast<int>(random() % 4);
                if (any + wanted > count()) code = ZV_ERROR_OUT_OF_RANGE;
                ASSERT_EQ(list.Remove(any, wanted), code == 0 ? 1 : 0);
                for (int i = 0; i < wanted && any < count(); ++i) removeAt(any);
            } else if (kind == 7 && random() % 8 == 0) {
                ASSERT_EQ(list.RemoveAll(), 1);
                model.clear();
                for (Position& other : open) other.index = other.slot = -1;
            } else if (kind == 8 || kind == 9) {
                bool used[10] = {};
                for (const Position& other : open) {
                    if (other.slot >= 0) used[other.slot] = true;
                }
                const int slot = static_cast<int>(std::find(used, used + 10, false) - used);
                const long number = list.BeginTraversal();
                if (slot == 10) {
                    ASSERT_EQ(number, -1);
                    code = ZV_ERROR_TOO_MANY_POSITIONS;
                } else {
                    ASSERT_GT(number, 0);
                    open.push_back({number, first, slot});
                }
            } else if (kind == 10 && p != nullptr) {
                ASSERT_EQ(list.EndTraversal(p->number), 1);
                open.erase(open.begin() + (p - open.data()));
            } else if (kind <= 13 && kind > 10 && p != nullptr) {
                // A step from past the end fails and goes on from the other end.
                const bool pastEnd = p->index == kPastEnd;
                ASSERT_EQ(kind == 13 ? list.PrevData(p->number) : list.NextData(p->number), pastEnd ? 0 : 1);
                if (pastEnd) code = ZV_ERROR_NOT_FOUND;
                if (kind == 13) {
                    p->index = (pastEnd ? count() : p->index) - 1;
                } else {
                    p->index = pastEnd ? first : p->index + 1 < count() ? p->index + 1 : kPastEnd;
                }
            } else if (kind == 14 && p != nullptr) {
                const bool toFirst = random() % 2 == 0;
                ASSERT_EQ(toFirst ? list.MoveFirst(p->number) : list.MoveLast(p->number), 1);
                p->index = toFirst ? first : count() - 1;
            } else if (kind == 15 && p != nullptr && !model.empty()) {
                ASSERT_EQ(list.Move(p->number, any), 1);
                p->index = any;
            } else if (kind == 16) {
                ASSERT_EQ(list.GetIndex(item(value)), foundIndex);
                ASSERT_EQ(list.IsContained(item(value)), foundIndex >= 0 ? 1 : 0);
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
            ASSERT_EQ(Error::GetError(), code);
        }
        ASSERT_EQ(contents(list), model);
    }
}

}  // namespace
}  // namespace Zvex
