export { showMeetings as show } from "/meetings.js";

export const title = "GoTo Meeting";
export const styleSheet = "/meetings.css";
