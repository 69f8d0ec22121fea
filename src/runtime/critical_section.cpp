#include "kdbind/runtime.h"

CKDCriticalSection::CKDCriticalSection() { pthread_mutex_init(&m_mutex, nullptr); }

CKDCriticalSection::~CKDCriticalSection() { pthread_mutex_destroy(&m_mutex); }

void CKDCriticalSection::Enter() { pthread_mutex_lock(&m_mutex); }

void CKDCriticalSection::Leave() { pthread_mutex_unlock(&m_mutex); }
