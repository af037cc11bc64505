#error "foundation/ links Foundation alone"
