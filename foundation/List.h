// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_LIST_H_
#define ZVEX_FOUNDATION_LIST_H_

namespace Zvex {

class ListImpl;

// A doubly linked list of element pointers, constructed in two phases. It owns its nodes and positions, never
// the elements. Null is a valid element.
//
// Elements are reached by index, helped by a cursor that remembers the last node reached, or through
// traversal positions: opaque numbers from BeginTraversal, valid for this list until EndTraversal, never 0. A
// position is on an element or past the end. At most ten may be open at a time; the destructor frees those
// left open.
//
// Results: 1 on success, 0 or null on failure; -1 for failed counts and indexes. A failure sets the thread's
// last error and writes nothing: 2 too many positions, 3 index out of range, 4 already constructed, 7 null or
// unknown argument, 8 not constructed, 9 traversal past the end, 1 no memory. A failed Construct leaves the
// list unconstructed. A list argument that is not constructed fails with 8. One thread at a time, even for
// reading, since walking a list moves its cursor.
//
// An argument of type List* picks the overloads that take a list; to hold a list as an element, cast it to
// void*.
class List {
public:
    List() = default;
    virtual ~List();
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    int Construct();                   // empty
    int Construct(const List* other);  // a copy of other's elements; null fails with 7
    int Construct(void** items,
                  int count);  // items[0] to items[count - 1]; null or count < 0 fails with 7

    int Add(void* item);         // at the tail
    int Add(const List* other);  // other's elements in order; a list may be added to itself

    // The number of elements, and the element at index, 0 to count - 1.
    int GetCount() const;
    void* Get(int index) const;

    // Inserts before the element at index, or appends if index is the count or more. index < 0 fails with 7.
    int Insert(void* item, int index);

    // Removes the first node that holds item; succeeds if there is none. A null item or an empty list fails
    // with 7. Of the positions on the removed node, the one in the lowest slot moves to the next node and the
    // others become past the end.
    int Remove(void* item);
    int Remove(int index);
    // Removes `count` elements from index on. If the list ends first, the elements up to there are removed
    // and the call fails with 3. A negative count fails with 7.
    int Remove(int index, int count);
    // Open positions stay valid, past the end, and no longer count against the limit of ten.
    int RemoveAll();

    int GetIndex(void* item) const;     // of the first node that holds item; -1 if none, which is no error
    int IsContained(void* item) const;  // 1 if so, else 0
    int IsContained(const List* other) const;  // every element of other; true for an empty one

    long BeginTraversal();               // at the head; -1 on failure
    void* GetData(long position) const;  // null past the end, which is no error
    // To the next element, or from the last one past the end. From past the end: back to the head, 0 with
    // code 9.
    int NextData(long position);
    // To the previous element, or from the first one past the end. From past the end: to the tail, 0 with
    // code 9.
    int PrevData(long position);
    int MoveFirst(long position);
    int MoveLast(long position);
    int Move(long position, int index);
    int EndTraversal(long position);

private:
    int unconstruct();  // after a failed Construct; 0

    ListImpl* mImpl = nullptr;  // null: not constructed
};

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_LIST_H_
