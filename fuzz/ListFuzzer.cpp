// SPDX-License-Identifier: Apache-2.0
// The list's operations in any order, compared with a vector, with the error code after each step. A position
// is the index of its element, or kPastEnd. If several positions are on a removed element, only the one in
// the lowest of the ten slots moves on. RemoveAll frees the slots, but the positions stay past the end until
// they are ended.
#include "foundation/List.h"

#include <algorithm>
#include <vector>

#include "foundation/Error.h"
#include "fuzz/Input.h"

namespace {

using Zvex::List;

constexpr int kPastEnd = -1;

// Elements are never dereferenced, so small numbers will do.
void* item(uintptr_t value) {
    return reinterpret_cast<void*>(value);
}

class ListAndModel {
public:
    ListAndModel() { ZVEX_FUZZ_CHECK(mList.Construct() == 1); }

    void step(fuzz::Input& input) {
        const int kind = input.between(0, 19);
        const int index = input.byte() < 16 ? input.integer() : input.between(-1, count() + 1);
        const uintptr_t value = static_cast<uintptr_t>(input.between(0, 12));
        mPosition = mOpen.empty() ? nullptr : &mOpen[input.byte() % mOpen.size()];
        mCode = 0;
        Zvex::Error::SetError(0);
        if (kind < 9) {
            changeElements(kind, index, value, input.between(-1, 4));
        } else {
            movePositions(kind, index);
        }
        ZVEX_FUZZ_CHECK(Zvex::Error::GetError() == mCode);
        compare(index, value);
    }

private:
    struct Position {
        long number;
        int index;
        int slot;  // -1 after RemoveAll freed it
    };

    int count() const { return static_cast<int>(mModel.size()); }
    int first() const { return mModel.empty() ? kPastEnd : 0; }
    bool within(int index) const { return index >= 0 && index < count(); }
    int find(uintptr_t value) const {
        const auto found = std::find(mModel.begin(), mModel.end(), value);
        return found != mModel.end() ? static_cast<int>(found - mModel.begin()) : -1;
    }
    void expectResult(int result, unsigned long code) {
        mCode = code;
        ZVEX_FUZZ_CHECK(result == (code == 0 ? 1 : 0));
    }

    void removeAt(int index) {
        mModel.erase(mModel.begin() + index);
        Position* lowest = nullptr;
        for (Position& p : mOpen) {
            const bool standsThere = p.index == index && p.slot >= 0;
            if (standsThere && (lowest == nullptr || p.slot < lowest->slot)) lowest = &p;
        }
        for (Position& p : mOpen) {
            if (p.index > index) {
                --p.index;
            } else if (p.index == index) {
                p.index = &p == lowest && index < count() ? index : kPastEnd;
            }
        }
    }

    void changeElements(int kind, int index, uintptr_t value, int many) {
        if (kind <= 1) {
            expectResult(mList.Add(item(value)), 0);
            mModel.push_back(value);
        } else if (kind <= 3) {
            expectResult(mList.Insert(item(value), index),
                         index < 0 ? Zvex::ZV_ERROR_INVALID_ARGUMENT : Zvex::ZV_ERROR_NONE);
            if (index < 0) return;
            for (Position& p : mOpen) p.index += index < count() && p.index >= index ? 1 : 0;
            mModel.insert(mModel.begin() + std::min(index, count()), value);
        } else if (kind == 4) {
            const bool refused = value == 0 || mModel.empty();
            expectResult(mList.Remove(item(value)),
                         refused ? Zvex::ZV_ERROR_INVALID_ARGUMENT : Zvex::ZV_ERROR_NONE);
            if (!refused && find(value) >= 0) removeAt(find(value));
        } else if (kind <= 6) {
            const int wanted = kind == 5 ? 1 : many;
            const int result = kind == 5 ? mList.Remove(index) : mList.Remove(index, wanted);
            const bool refused = !within(index) || (wanted >= 0 && index + wanted > count());
            expectResult(result, refused      ? Zvex::ZV_ERROR_OUT_OF_RANGE
                                 : wanted < 0 ? Zvex::ZV_ERROR_INVALID_ARGUMENT
                                              : Zvex::ZV_ERROR_NONE);
            for (int i = 0; i < wanted && within(index); ++i) removeAt(index);
        } else if (kind == 7) {
            if (value > 2) return;  // seldom
            expectResult(mList.RemoveAll(), 0);
            mModel.clear();
            for (Position& p : mOpen) p.index = p.slot = -1;
        } else if (count() < 500) {
            expectResult(mList.Add(&mList), 0);
            mModel.insert(mModel.end(), mModel.begin(), mModel.begin() + count());
        }
    }

    void begin() {
        bool used[10] = {};
        for (const Position& p : mOpen) {
            if (p.slot >= 0) used[p.slot] = true;
        }
        const int slot = static_cast<int>(std::find(used, used + 10, false) - used);
        const long number = mList.BeginTraversal();
        if (slot == 10) mCode = Zvex::ZV_ERROR_TOO_MANY_POSITIONS;
        ZVEX_FUZZ_CHECK(slot == 10 ? number == -1 : number > 0);
        if (slot < 10) mOpen.push_back({number, first(), slot});
    }

    void movePositions(int kind, int index) {
        if (kind <= 11 || mPosition == nullptr) return mOpen.size() < 40 ? begin() : void();
        Position& p = *mPosition;
        const bool pastEnd = p.index == kPastEnd;
        // A step from past the end fails and continues at the other end.
        const unsigned long stepped = pastEnd ? Zvex::ZV_ERROR_NOT_FOUND : Zvex::ZV_ERROR_NONE;
        if (kind == 12) {
            expectResult(mList.EndTraversal(p.number), 0);
            mOpen.erase(mOpen.begin() + (mPosition - mOpen.data()));
        } else if (kind <= 14) {
            expectResult(mList.NextData(p.number), stepped);
            p.index = pastEnd ? first() : p.index + 1 < count() ? p.index + 1 : kPastEnd;
        } else if (kind == 15) {
            expectResult(mList.PrevData(p.number), stepped);
            p.index = (pastEnd ? count() : p.index) - 1;
        } else if (kind == 16) {
            expectResult(mList.MoveFirst(p.number), 0);
            p.index = first();
        } else if (kind == 17) {
            expectResult(mList.MoveLast(p.number), 0);
            p.index = count() - 1;
        } else if (kind == 18) {
            expectResult(mList.Move(p.number, index),
                         within(index) ? Zvex::ZV_ERROR_NONE : Zvex::ZV_ERROR_OUT_OF_RANGE);
            if (within(index)) p.index = index;
        } else {  // a number that is not open
            const auto open = [index](const Position& other) { return other.number == index; };
            if (std::any_of(mOpen.begin(), mOpen.end(), open)) return;
            expectResult(mList.NextData(index), Zvex::ZV_ERROR_INVALID_ARGUMENT);
        }
    }

    void compare(int index, uintptr_t value) {
        ZVEX_FUZZ_CHECK(mList.GetCount() == count());
        ZVEX_FUZZ_CHECK(mList.GetIndex(item(value)) == find(value));
        ZVEX_FUZZ_CHECK(mList.IsContained(item(value)) == (find(value) >= 0 ? 1 : 0));
        ZVEX_FUZZ_CHECK(mList.Get(index) ==
                        (within(index) ? item(mModel[static_cast<size_t>(index)]) : nullptr));
        for (const Position& p : mOpen) {
            ZVEX_FUZZ_CHECK(mList.GetData(p.number) ==
                            (p.index == kPastEnd ? nullptr : item(mModel[static_cast<size_t>(p.index)])));
        }
    }

    List mList;
    std::vector<uintptr_t> mModel;
    std::vector<Position> mOpen;
    Position* mPosition = nullptr;  // one of them, for this step
    unsigned long mCode = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    ListAndModel both;
    for (int steps = 0; steps < 400 && input.left() > 0; ++steps) both.step(input);
    return 0;
}
