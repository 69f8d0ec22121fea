// The events by which a collection tells a listener, usually the object that
// owns it, that it changed.
#include "kdbind/binding.h"

namespace KdBind {

namespace {

// The source is the collection seen as an object. A null listener is skipped.
void Tell(IEventSink* sink, CXmlCollectionBase* collection, IEventSink::MsgType type, void* data)
{
    if (sink)
        sink->OnEvent(collection->GetBase(), type, data);
}

// The index lives here for the length of the call only, so the listener must
// read it then; -1, an index the list does not know, travels as null.
void TellIndex(IEventSink* sink, CXmlCollectionBase* collection, IEventSink::MsgType type, int index)
{
    Tell(sink, collection, type, index == -1 ? nullptr : &index);
}

} // namespace

void CXmlObjectBase::FireOnCollectionChangeEvent(IEventSink* sink, CXmlCollectionBase* collection)
{
    Tell(sink, collection, IEventSink::MsgType_CollectionChanged, nullptr);
}

void CXmlObjectBase::FireOnCollectionAddEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item)
{
    Tell(sink, collection, IEventSink::MsgType_ItemAdding, item);
}

void CXmlObjectBase::FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item)
{
    Tell(sink, collection, IEventSink::MsgType_ItemAdded, item);
}

void CXmlObjectBase::FireOnCollectionRemoveEvent(IEventSink* sink, CXmlCollectionBase* collection, int index)
{
    TellIndex(sink, collection, IEventSink::MsgType_ItemRemoving, index);
}

void CXmlObjectBase::FireOnCollectionRemoveCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection,
                                                         int index)
{
    TellIndex(sink, collection, IEventSink::MsgType_ItemRemoved, index);
}

} // namespace KdBind
