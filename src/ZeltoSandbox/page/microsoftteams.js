export { showMeetings as show } from "/meetings.js";

export const title = "Microsoft Teams";
export const styleSheet = "/meetings.css";
