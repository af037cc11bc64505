// Nothing of it is used.
#pragma once
