// SPDX-License-Identifier: Apache-2.0
#include "foundation/ListImpl.h"

#include <climits>
#include <new>

namespace Zvex {

ListImpl::~ListImpl() {
    removeAll();
    while (positions != nullptr) close(positions);
}

void ListImpl::Init() {
    head = tail = nullptr;
    count = 0;
    openTraversals = 0;
    for (Position*& slot : slots) slot = nullptr;
    cursorIndex = -1;
    cursorNode = nullptr;
    positions = nullptr;
    lastNumber = 0;
}

void ListImpl::setCursor(int index, Node* node) {
    cursorIndex = node != nullptr ? index : kNoCursor;
    cursorNode = node;
}

void ListImpl::clearCursor() {
    setCursor(kNoCursor, nullptr);
}

bool ListImpl::append(void* item) {
    Node* node = new (std::nothrow) Node{tail, nullptr, item};
    if (node == nullptr) return false;
    (tail != nullptr ? tail->next : head) = node;
    tail = node;
    ++count;
    return true;
}

bool ListImpl::appendAll(const ListImpl& other) {
    // The count is taken first: a list added to itself grows while it is walked.
    const Node* from = other.head;
    const int before = count;
    for (int left = other.count; left > 0; --left, from = from->next) {
        if (append(from->item)) continue;
        while (count > before) remove(tail, count - 1);
        return false;
    }
    return true;
}

bool ListImpl::insertBefore(Node* next, void* item) {
    Node* node = new (std::nothrow) Node{next->previous, next, item};
    if (node == nullptr) return false;
    (next->previous != nullptr ? next->previous->next : head) = node;
    next->previous = node;
    ++count;
    return true;
}

ListImpl::Node* ListImpl::nodeAt(int index) {
    Node* node = cursorNode;
    int at = cursorIndex;
    // From the head if there is no cursor or the head is nearer.
    if (node == nullptr || index <= at / 2) {
        node = head;
        at = 0;
    }
    for (; at < index; ++at) node = node->next;
    for (; at > index; --at) node = node->previous;
    setCursor(index, node);
    return node;
}

int ListImpl::indexOf(const void* item) const {
    int index = 0;
    for (const Node* node = head; node != nullptr; node = node->next, ++index) {
        if (node->item == item) return index;
    }
    return -1;
}

void ListImpl::remove(Node* node, int index) {
    // The position in the first slot moves to the next node. Any other would point to freed memory, so it is
    // put past the end.
    bool moved = false;
    for (Position* position : slots) {
        if (moved || position == nullptr || position->node != node) continue;
        position->node = node->next;
        moved = true;
    }
    for (Position* position = positions; position != nullptr; position = position->nextOpen) {
        if (position->node == node) position->node = nullptr;
    }

    if (cursorNode == node) {
        if (node->previous != nullptr) {
            setCursor(index - 1, node->previous);
        } else {
            setCursor(0, node->next);
        }
    } else if (cursorNode != nullptr && cursorIndex > index) {
        --cursorIndex;
    }

    (node->previous != nullptr ? node->previous->next : head) = node->next;
    (node->next != nullptr ? node->next->previous : tail) = node->previous;
    --count;
    delete node;
}

void ListImpl::removeAll() {
    while (head != nullptr) {
        Node* next = head->next;
        delete head;
        head = next;
    }
    tail = nullptr;
    count = 0;
    for (Position* position = positions; position != nullptr; position = position->nextOpen) {
        position->node = nullptr;
    }
    for (Position*& slot : slots) slot = nullptr;
    openTraversals = 0;
    clearCursor();
}

ListImpl::Position* ListImpl::open() {
    do {
        lastNumber = lastNumber < LONG_MAX ? lastNumber + 1 : 1;
    } while (find(lastNumber) != nullptr);
    Position* position = new (std::nothrow) Position{head, lastNumber, positions};
    if (position == nullptr) return nullptr;
    positions = position;
    for (Position*& slot : slots) {
        if (slot != nullptr) continue;
        slot = position;
        ++openTraversals;
        break;
    }
    setCursor(0, head);
    return position;
}

ListImpl::Position* ListImpl::find(long number) const {
    Position* position = positions;
    while (position != nullptr && position->number != number) position = position->nextOpen;
    return position;
}

void ListImpl::close(Position* position) {
    for (Position*& slot : slots) {
        if (slot != position) continue;
        slot = nullptr;
        --openTraversals;
    }
    Position** link = &positions;
    while (*link != position) link = &(*link)->nextOpen;
    *link = position->nextOpen;
    delete position;
    clearCursor();
}

}  // namespace Zvex
