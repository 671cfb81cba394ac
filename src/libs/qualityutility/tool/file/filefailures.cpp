#include "filefailures.h"

#include "filefailurerecorder_p.h"

#include <utility>

namespace {

thread_local FileFailures* s_listener = nullptr;

} // namespace

FileFailures::FileFailures() : m_outer(std::exchange(s_listener, this)) {}

FileFailures::~FileFailures()
{
    s_listener = m_outer;
}

void recordFileFailure(const FileFailure& failure)
{
    if (s_listener)
        s_listener->m_list.append(failure);
}
