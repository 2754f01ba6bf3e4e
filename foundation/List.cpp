// SPDX-License-Identifier: Apache-2.0
#include "foundation/List.h"

#include <new>

#include "foundation/Error.h"
#include "foundation/ListImpl.h"

namespace Zvex {

namespace {

// Failures set the thread's last error and write nothing.
template <typename Result>
Result fail(unsigned long code, Result result) {
    Error::SetError(code);
    return result;
}

}  // namespace

List::~List() {
    delete mImpl;
}

int List::Construct() {
    if (mImpl != nullptr) return fail(ZV_ERROR_ALREADY_CONSTRUCTED, 0);
    mImpl = new (std::nothrow) ListImpl;
    return mImpl != nullptr ? 1 : fail(ZV_ERROR_PLATFORM, 0);
}

int List::Construct(const List* other) {
    if (mImpl != nullptr) return fail(ZV_ERROR_ALREADY_CONSTRUCTED, 0);
    if (other == nullptr) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    if (other->mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (Construct() == 0) return 0;
    return Add(other) != 0 ? 1 : unconstruct();
}

int List::Construct(void** items, int count) {
    if (mImpl != nullptr) return fail(ZV_ERROR_ALREADY_CONSTRUCTED, 0);
    if (items == nullptr || count < 0) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    if (Construct() == 0) return 0;
    for (int i = 0; i < count; ++i) {
        if (Add(items[i]) == 0) return unconstruct();
    }
    return 1;
}

int List::unconstruct() {
    delete mImpl;
    mImpl = nullptr;
    return 0;
}

int List::Add(void* item) {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    return mImpl->append(item) ? 1 : fail(ZV_ERROR_PLATFORM, 0);
}

int List::Add(const List* other) {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (other == nullptr) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    if (other->mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    return mImpl->appendAll(*other->mImpl) ? 1 : fail(ZV_ERROR_PLATFORM, 0);
}

int List::GetCount() const {
    return mImpl != nullptr ? mImpl->count : fail(ZV_ERROR_NOT_CONSTRUCTED, -1);
}

void* List::Get(int index) const {
    if (mImpl == nullptr) return fail<void*>(ZV_ERROR_NOT_CONSTRUCTED, nullptr);
    if (index < 0 || index >= mImpl->count) return fail<void*>(ZV_ERROR_OUT_OF_RANGE, nullptr);
    return mImpl->nodeAt(index)->item;
}

int List::Insert(void* item, int index) {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (index < 0) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    if (index >= mImpl->count) return Add(item);
    ListImpl::Node* const next = mImpl->nodeAt(index);
    if (!mImpl->insertBefore(next, item)) return fail(ZV_ERROR_PLATFORM, 0);
    mImpl->setCursor(index + 1, next);
    return 1;
}

int List::Remove(void* item) {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (item == nullptr || mImpl->count == 0) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    int index = 0;
    for (ListImpl::Node* node = mImpl->head; node != nullptr; node = node->next, ++index) {
        if (node->item != item) continue;
        mImpl->remove(node, index);
        break;
    }
    return 1;
}

int List::Remove(int index) {
    return Remove(index, 1);
}

int List::Remove(int index, int count) {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (index < 0 || index >= mImpl->count) return fail(ZV_ERROR_OUT_OF_RANGE, 0);
    if (count < 0) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    for (; count > 0; --count) {
        if (index >= mImpl->count) return fail(ZV_ERROR_OUT_OF_RANGE, 0);
        mImpl->remove(mImpl->nodeAt(index), index);
    }
    return 1;
}

int List::RemoveAll() {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    mImpl->removeAll();
    return 1;
}

int List::GetIndex(void* item) const {
    return mImpl != nullptr ? mImpl->indexOf(item) : fail(ZV_ERROR_NOT_CONSTRUCTED, -1);
}

int List::IsContained(void* item) const {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    return mImpl->indexOf(item) >= 0 ? 1 : 0;
}

int List::IsContained(const List* other) const {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    if (other == nullptr) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    if (other->mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    for (const ListImpl::Node* node = other->mImpl->head; node != nullptr; node = node->next) {
        if (mImpl->indexOf(node->item) < 0) return 0;
    }
    return 1;
}

long List::BeginTraversal() {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, -1L);
    if (mImpl->openTraversals >= ListImpl::kSlots) return fail(ZV_ERROR_TOO_MANY_POSITIONS, -1L);
    const ListImpl::Position* position = mImpl->open();
    return position != nullptr ? position->number : fail(ZV_ERROR_PLATFORM, -1L);
}

void* List::GetData(long number) const {
    if (mImpl == nullptr) return fail<void*>(ZV_ERROR_NOT_CONSTRUCTED, nullptr);
    const ListImpl::Position* position = mImpl->find(number);
    if (position == nullptr) return fail<void*>(ZV_ERROR_INVALID_ARGUMENT, nullptr);
    return position->node != nullptr ? position->node->item : nullptr;
}

int List::NextData(long number) {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    ListImpl::Position* position = mImpl->find(number);
    if (position == nullptr) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    ListImpl::Node* const left = position->node;
    if (left == nullptr) {
        position->node = mImpl->head;
        return fail(ZV_ERROR_NOT_FOUND, 0);
    }
    position->node = left->next;
    // The cursor moves along only if it is on the position's node, since the index is known nowhere else.
    if (mImpl->cursorNode == left && left->next != nullptr)
        mImpl->setCursor(mImpl->cursorIndex + 1, left->next);
    return 1;
}

int List::PrevData(long number) {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    ListImpl::Position* position = mImpl->find(number);
    if (position == nullptr) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    ListImpl::Node* const left = position->node;
    if (left == nullptr) {
        position->node = mImpl->tail;
        return fail(ZV_ERROR_NOT_FOUND, 0);
    }
    position->node = left->previous;
    if (mImpl->cursorNode == left && left->previous != nullptr) {
        mImpl->setCursor(mImpl->cursorIndex - 1, left->previous);
    }
    return 1;
}

int List::MoveFirst(long number) {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    ListImpl::Position* position = mImpl->find(number);
    if (position == nullptr) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    position->node = mImpl->head;
    mImpl->setCursor(0, mImpl->head);
    return 1;
}

int List::MoveLast(long number) {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    ListImpl::Position* position = mImpl->find(number);
    if (position == nullptr) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    position->node = mImpl->tail;
    mImpl->setCursor(mImpl->count - 1, mImpl->tail);
    return 1;
}

int List::Move(long number, int index) {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    ListImpl::Position* position = mImpl->find(number);
    if (position == nullptr) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    if (index < 0 || index >= mImpl->count) return fail(ZV_ERROR_OUT_OF_RANGE, 0);
    position->node = mImpl->nodeAt(index);
    return 1;
}

int List::EndTraversal(long number) {
    if (mImpl == nullptr) return fail(ZV_ERROR_NOT_CONSTRUCTED, 0);
    ListImpl::Position* position = mImpl->find(number);
    if (position == nullptr) return fail(ZV_ERROR_INVALID_ARGUMENT, 0);
    mImpl->close(position);
    return 1;
}

}  // namespace Zvex
