// One colour for each joint, in the picture, in its row and in the plots.
export const jointColours = ['#e5484d', '#f2811d', '#d3a000', '#30a46c', '#0fa3b8', '#3e7bfa', '#8e4ec6'];
export const axisColours = ['#e5484d', '#30a46c', '#3e7bfa'];
export const tipColour = '#ff2e88';
export const ghostColour = '#3e7bfa';
