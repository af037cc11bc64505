#error "only web/ and the composition root know WebKit"
