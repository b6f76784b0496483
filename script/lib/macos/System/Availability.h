// Asked for by Qt; nothing of it is used here.
#pragma once
