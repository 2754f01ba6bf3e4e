// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_LISTIMPL_H_
#define ZVEX_FOUNDATION_LISTIMPL_H_

namespace Zvex {

// The record behind a List. Invariants between operations:
// 1. head and tail are both null (count 0) or the two ends of a chain of count nodes.
// 2. cursorNode is null, or the node at cursorIndex.
// 3. Every position stands on a node of the chain or on null, past the end.
// 4. Every slot of the table that is not null holds a position of the chain of positions.
class ListImpl {
public:
    struct Node {
        Node* previous;
        Node* next;
        void* item;
    };

    // What a traversal number refers to. Positions are found by number, since an address may not fit into a
    // long; numbers that are not open are refused.
    struct Position {
        Node* node;
        long number;
        Position* nextOpen;
    };

    static constexpr int kSlots = 10;
    static constexpr int kNoCursor = -999999999;

    Node* head;
    Node* tail;
    int count;
    int openTraversals;       // slots in use
    Position* slots[kSlots];  // the positions that count against the limit, in removal's order
    int cursorIndex;
    Node* cursorNode;
    Position* positions;  // every open position, slot or not
    long lastNumber;      // given to the last position opened

    ListImpl() { Init(); }
    ~ListImpl();
    ListImpl(const ListImpl&) = delete;
    ListImpl& operator=(const ListImpl&) = delete;

    // Clears every field, freeing nothing; the cursor index becomes -1.
    void Init();

    bool append(void* item);
    // All of them or, if memory is short, none.
    bool appendAll(const ListImpl& other);
    bool insertBefore(Node* next, void* item);
    Node* nodeAt(int index);  // 0 <= index < count; leaves the cursor there
    int indexOf(const void* item) const;
    void remove(Node* node, int index);
    void removeAll();

    Position* open();  // null if memory is short
    Position* find(long number) const;
    void close(Position* position);

    void setCursor(int index, Node* node);
    void clearCursor();
};

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_LISTIMPL_H_
