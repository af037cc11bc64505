// The two functions of the blocks runtime.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif
void* _Block_copy(const void* block);
void _Block_release(const void* block);
#ifdef __cplusplus
}
#endif
